#include "pending/leftfiles.h"

#include "files/contenthash.h"
#include "files/pathgate.h"
#include "platform/fileaccess.h"
#include "platform/pathform.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace leftfiles {

namespace {

QString keyOf(const QString &path)
{
    return pathgate::levelsOf(path).join(QLatin1Char('\\'));
}

/// As far as the text and the listing tell; Removed when the disk is to be asked.
Ending judged(const ledger::NewDeletion &file, const Listing &listing, const QSet<QString> &named)
{
    if (!pathgate::isBelow(file.path, listing.orderFolder))
        return Ending::Outside;
    const QString name = file.path.section(QLatin1Char('\\'), -1);
    if (named.contains(keyOf(file.path)) || listing.photos.contains(name, Qt::CaseInsensitive) ||
        (!file.photo.isEmpty() && listing.photos.contains(file.photo, Qt::CaseInsensitive)))
        return Ending::Named;
    return Ending::Removed;
}

bool isUnchanged(const ledger::NewDeletion &file, const QFileInfo &info)
{
    if (info.isSymLink() || !info.isFile() || file.hash.isEmpty() || info.size() != file.bytes ||
        info.lastModified().toMSecsSinceEpoch() != file.modifiedMs)
        return false;
    const ContentReading content = readContent(info.filePath());
    return content.isRead() && content.hash == file.hash;
}

Ending removeOne(const ledger::NewDeletion &file, const QString &orderFolder)
{
    const QFileInfo info(platform::toLocalPath(file.path));
    if (!info.exists() && !info.isSymLink())
        return QFileInfo(platform::toLocalPath(orderFolder)).isDir() ? Ending::Gone
                                                                     : Ending::Failed;
    if (!isUnchanged(file, info))
        return Ending::Changed;
    const bool isRemoved =
        platform::mayBeRemoved(info.filePath()) && QFile::remove(info.filePath());
    return isRemoved ? Ending::Removed : Ending::Failed;
}

QString reasonOf(Ending ending)
{
    switch (ending) {
    case Ending::Changed:
        return QStringLiteral("文件已变化，保留");
    case Ending::Named:
        return QStringLiteral("服务端仍有这张照片，保留");
    case Ending::Outside:
        return QStringLiteral("不在订单现在的导片路径下，保留");
    case Ending::Failed:
        return QStringLiteral("无法删除，请检查网络和权限");
    case Ending::Removed:
    case Ending::Gone:
        return {};
    }
    Q_UNREACHABLE();
}

} // namespace

QVector<Result> remove(const QVector<ledger::Deletion> &files, const Listing &listing)
{
    QSet<QString> named;
    for (const QString &path : listing.paths)
        named.insert(keyOf(path));
    QVector<Result> results;
    for (const ledger::Deletion &each : files) {
        Ending ending = judged(each.file, listing, named);
        if (ending == Ending::Removed)
            ending = removeOne(each.file, listing.orderFolder);
        results.append({each.id, each.file.path, ending});
    }
    return results;
}

QString textOf(const QVector<Result> &results)
{
    const auto done = std::count_if(results.cbegin(), results.cend(),
                                    [](const Result &result) { return result.isDone(); });
    QString text = QStringLiteral("已删除 %1 个文件").arg(done);
    for (const Result &result : results) {
        if (!result.isDone())
            text += QStringLiteral("\n%1: %2").arg(result.path, reasonOf(result.ending));
    }
    return text;
}

} // namespace leftfiles
