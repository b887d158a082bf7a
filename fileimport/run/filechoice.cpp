#include "fileimport/run/filechoice.h"

#include "fileimport/rules/importrules.h"
#include "fileimport/run/importfilecopyrunnable.h"
#include "files/filewriting.h"
#include "files/paths.h"
#include "platform/pathform.h"

#include <QFileInfo>
#include <QSet>

namespace {

QString makeFolders(const ChoiceRequest &request)
{
    QString error;
    QStringList folders{request.importPath};
    const auto subFolders = importrules::subFolders(request.mode);
    for (const QString &name : subFolders)
        folders.append(joinWirePath(request.importPath, name));
    for (const QString &folder : qAsConst(folders)) {
        const QString local = platform::toLocalPath(folder);
        if (!ImportFileCopyRunnable::ensureFolder(local, &error))
            return error;
        removeStaleTemporaries(local);
    }
    return {};
}

} // namespace

ChoiceResult prepareChoice(const ChoiceRequest &request)
{
    ChoiceResult result;
    result.folderError = makeFolders(request);
    if (!result.folderError.isEmpty())
        return result;
    QSet<QString> sources;
    for (const ImportFile &file : request.known)
        sources.insert(file.sourcePath);
    result.files.reserve(request.paths.size());
    for (const QString &path : request.paths) {
        const QFileInfo info(path);
        ImportFile file;
        file.sourcePath = info.absoluteFilePath();
        if (sources.contains(file.sourcePath))
            continue;
        sources.insert(file.sourcePath);
        file.baseName = info.completeBaseName();
        file.suffix = info.suffix();
        file.targetFolder =
            joinWirePath(request.importPath, importrules::subFolderFor(request.mode, file.suffix));
        file.orderIndex = request.orderIndex;
        file.fileIndex = request.known.size() + result.files.size();
        file.size = info.size();
        result.files.append(file);
    }
    result.clashes = importrules::sameTargetGroups(request.known + result.files);
    return result;
}
