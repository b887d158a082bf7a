#include "fileimport/filechoice.h"

#include "fileimport/importfilecopyrunnable.h"
#include "fileimport/importrules.h"
#include "net/filewriting.h"
#include "net/paths.h"
#include "platform/pathform.h"

#include <QCollator>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>

namespace {

/// The dropped files and those in dropped folders that \a mode takes, in the order of their names.
QStringList expandDrop(ImportMode mode, const QStringList &paths, int *ignored)
{
    QStringList taken;
    const auto consider = [&](const QString &path) {
        if (importrules::takesDropped(mode, QFileInfo(path).fileName()))
            taken.append(path);
        else
            ++*ignored;
    };
    for (const QString &path : paths) {
        if (!QFileInfo(path).isDir()) {
            consider(path);
            continue;
        }
        QDirIterator files(path, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext())
            consider(files.next());
    }
    QCollator byName(QLocale(QLocale::Chinese, QLocale::China)); // whatever the machine is set to
    byName.setNumericMode(true);
    std::sort(taken.begin(), taken.end(), byName);
    taken.removeDuplicates();
    return taken;
}

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
        request.dropped ? expandDrop(request.mode, request.paths, &result.ignored) : request.paths;
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
