#include "pending/leftfiles.h"

#include "files/contenthash.h"
#include "files/pathgate.h"
#include "platform/fileaccess.h"
#include "platform/pathform.h"

#include <QFile>
#include <QFileInfo>
#include <QPair>
#include <QSet>

namespace leftfiles {

namespace {

QString keyOf(const QString &path)
{
    return pathgate::levelsOf(path).join(QLatin1Char('\\'));
}

QSet<QString> keysOf(const QStringList &paths)
{
    QSet<QString> keys;
    for (const QString &path : paths)
        keys.insert(keyOf(path));
    return keys;
}

bool isNamedBy(const ledger::NewDeletion &file, const QStringList &photos,
               const QSet<QString> &paths)
{
    const QString name = file.path.section(QLatin1Char('\\'), -1);
    return paths.contains(keyOf(file.path)) || photos.contains(name, Qt::CaseInsensitive) ||
           (!file.photo.isEmpty() && photos.contains(file.photo, Qt::CaseInsensitive));
}

/// As far as the text and the listing tell; Removed when the disk is to be asked.
Ending judged(const ledger::NewDeletion &file, const Listing &listing, const QSet<QString> &paths)
{
    if (!pathgate::isBelow(file.path, listing.orderFolder))
        return Ending::Outside;
    return isNamedBy(file, listing.photos, paths) ? Ending::Named : Ending::Removed;
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

bool isNamed(const ledger::NewDeletion &file, const Listing &listing)
{
    return isNamedBy(file, listing.photos, keysOf(listing.paths));
}

int photosAmong(const QVector<ledger::Deletion> &files)
{
    QSet<QPair<OrderIdentity, QString>> photos;
    for (const ledger::Deletion &file : files)
        photos.insert({file.order.identity,
                       file.file.photo.isEmpty() ? keyOf(file.file.path) : file.file.photo});
    return photos.size();
}

QString verifiedText(int named, int forgotten)
{
    QStringList lines;
    if (named > 0)
        lines += QStringLiteral("服务端仍有 %1 张照片，没有删除，磁盘上的文件保留").arg(named);
    if (forgotten > 0)
        lines += QStringLiteral("服务端已经没有 %1 张照片，磁盘上的文件可以删除").arg(forgotten);
    return lines.join(QLatin1Char('\n'));
}

QVector<Result> remove(const QVector<ledger::Deletion> &files, const Listing &listing)
{
    const QSet<QString> named = keysOf(listing.paths);
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
    // A file that was to be deleted twice is one.
    QSet<QString> done;
    QSet<QString> left;
    for (const Result &result : results) {
        if (result.isDone())
            done.insert(keyOf(result.path));
    }
    QString text = QStringLiteral("已删除 %1 个文件").arg(done.size());
    for (const Result &result : results) {
        const QString key = keyOf(result.path);
        if (result.isDone() || left.contains(key))
            continue;
        left.insert(key);
        text += QStringLiteral("\n%1: %2").arg(result.path, reasonOf(result.ending));
    }
    return text;
}

} // namespace leftfiles
