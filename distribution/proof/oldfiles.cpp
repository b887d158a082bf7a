#include "distribution/proof/oldfiles.h"

#include "files/filewriting.h"
#include "files/pathgate.h"
#include "files/paths.h"
#include "platform/fileaccess.h"
#include "platform/filetransfer.h"
#include "platform/folderlisting.h"

#include <QDir>
#include <QFileInfo>

namespace oldfiles {

namespace {

constexpr int mostFoldersASecond = 100;

/// Makes a folder that was not there before; empty when none could be made.
QString makeNewFolder(const QString &above, const QDateTime &now)
{
    const QString name = now.toString(QStringLiteral("yyyy-MM-dd HH-mm-ss"));
    for (int number = 1; number <= mostFoldersASecond; ++number) {
        const QString path =
            joinLocalPath(above, number == 1 ? name : name + QStringLiteral(" (%1)").arg(number));
        if (platform::presenceOf(path) == platform::Presence::Gone && QDir().mkdir(path))
            return path;
    }
    return {};
}

/// The first folder on the way from \a orderFolder to \a path, the latter excluded, that leads
/// elsewhere; empty when none does.
QString linkOnTheWay(const QString &orderFolder, const QString &path)
{
    const QStringList levels =
        path.mid(orderFolder.size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    QString folder = orderFolder;
    for (int level = 0; level + 1 < levels.size(); ++level) {
        folder = joinLocalPath(folder, levels.at(level));
        if (platform::isLink(folder))
            return folder;
    }
    return {};
}

/// Why \a file has to stay where it is; empty when it may be moved.
QString objectionTo(const QString &orderFolder, const EarlierFile &file)
{
    const QString path = QDir::cleanPath(file.path);
    if (!pathgate::isBelow(path, orderFolder) || !path.startsWith(orderFolder, Qt::CaseInsensitive))
        return QStringLiteral("不在订单文件夹中");
    if (!linkOnTheWay(orderFolder, path).isEmpty())
        return QStringLiteral("所在目录是链接，保留");
    if (!file.isUnchanged())
        return QStringLiteral("文件已变化，保留");
    if (!platform::mayBeRemoved(path))
        return QStringLiteral("文件只读，保留");
    return {};
}

/// Returns why the file did not move.
QString move(const QString &orderFolder, const EarlierFile &file, const QString &into)
{
    const QString objection = objectionTo(orderFolder, file);
    if (!objection.isEmpty())
        return objection;
    const QString path = QDir::cleanPath(file.path);
    const QString target = into + path.mid(orderFolder.size());
    if (!makeFolder(QFileInfo(target).path()))
        return QStringLiteral("无法创建目录 %1").arg(QFileInfo(target).path());
    switch (platform::moveFile(path, target)) {
    case platform::MoveResult::Moved:
        return {};
    case platform::MoveResult::Occupied:
        return QStringLiteral("目标位置已有同名文件，保留");
    case platform::MoveResult::Failed:
        break;
    }
    return platform::isInUse(path) ? QStringLiteral("文件被其他程序占用")
                                   : QStringLiteral("移动失败");
}

/// Folders without a file in them; what is not empty stays.
void removeEmpty(const QString &folder)
{
    const QStringList below =
        QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QString &each : below)
        removeEmpty(joinLocalPath(folder, each));
    QDir().rmdir(folder);
}

} // namespace

PutAway putAway(const QString &orderFolder, const QVector<EarlierFile> &files, const QDateTime &now)
{
    const QString root = QDir::cleanPath(orderFolder);
    const QString old = joinLocalPath(root, orderproof::oldFiles);
    PutAway result;
    if (pathgate::flawOf(root) != pathgate::Flaw::None || platform::isLink(root) ||
        platform::isLink(old)) {
        result.problems.append(QStringLiteral("%1 是链接，没有移动任何文件").arg(old));
        return result;
    }
    const QString folder = makeFolder(old) ? makeNewFolder(old, now) : QString();
    if (folder.isEmpty()) {
        result.problems.append(QStringLiteral("无法创建目录 %1，没有移动任何文件").arg(old));
        return result;
    }
    for (const EarlierFile &file : files) {
        const QString problem = move(root, file, folder);
        if (problem.isEmpty())
            ++result.moved;
        else
            result.problems.append(
                QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file.path), problem));
    }
    removeEmpty(folder);
    if (result.moved > 0)
        result.folder = folder;
    else
        QDir().rmdir(old); // empty unless it has been used before
    return result;
}

} // namespace oldfiles
