#include "fileimport/filechoice.h"

#include "fileimport/importfilecopyrunnable.h"
#include "fileimport/importrules.h"
#include "files/chosenfiles.h"
#include "files/filewriting.h"
#include "files/paths.h"
#include "platform/pathform.h"

#include <QFileInfo>

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
    const QStringList paths =
        request.dropped
            ? chosenfiles::expandDrop(request.paths, importrules::dialogFilter(request.mode),
                                      &result.ignored)
            : request.paths;
    if (paths.isEmpty())
        return result;
    result.folderError = makeFolders(request);
    if (!result.folderError.isEmpty())
        return result;
    result.files.reserve(paths.size());
    for (const QString &path : paths) {
        const QFileInfo info(path);
        ImportFile file;
        file.sourcePath = info.absoluteFilePath();
        file.baseName = info.completeBaseName();
        file.suffix = info.suffix();
        file.targetFolder =
            joinWirePath(request.importPath, importrules::subFolderFor(request.mode, file.suffix));
        file.orderIndex = request.orderIndex;
        file.fileIndex = result.files.size();
        file.size = info.size();
        result.files.append(file);
    }
    result.clashes = importrules::sameTargetGroups(result.files);
    return result;
}
