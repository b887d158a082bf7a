#include "batchdelete/deletionrules.h"

#include "platform/folderlisting.h"
#include "platform/pathform.h"

#include <QDir>

#include <algorithm>

namespace deletionrules {

namespace {

const QLatin1Char slash('/');

/// The names on the way from the root to a folder. False when there are more ".." than names, or a
/// name that Windows would take for none.
bool splitNames(const QString &path, QStringList *names)
{
    const auto parts = path.split(slash, Qt::SkipEmptyParts);
    for (QString part : parts) {
        if (part == QLatin1String("."))
            continue;
        if (part == QLatin1String("..")) {
            if (names->isEmpty())
                return false;
            names->removeLast();
            continue;
        }
        while (part.endsWith(QLatin1Char('.')) || part.endsWith(QLatin1Char(' ')))
            part.chop(1);
        if (part.isEmpty())
            return false;
        names->append(part.normalized(QString::NormalizationForm_C).toCaseFolded());
    }
    return true;
}

QString slashed(QString path)
{
    return path.replace(QLatin1Char('\\'), slash);
}

QString localFolder(const QString &netPath)
{
    return QDir::cleanPath(QDir::fromNativeSeparators(platform::toLocalPath(netPath)));
}

/// A folder by everything it can be known by: the key of its path, and what the disk says.
struct Place
{
    QStringList itself;
    QStringList above; ///< the same of the folders above it, the nearest first

    Place(const QString &netPath, const FolderKey &key, const IdentityOf &identityOf);
};

Place::Place(const QString &netPath, const FolderKey &key, const IdentityOf &identityOf)
{
    if (key.text.isEmpty())
        return;
    itself.append(key.text);
    const bool isShare = key.text.startsWith(QLatin1String("//"));
    for (int end = key.text.lastIndexOf(slash); end > (isShare ? 1 : 0);
         end = key.text.lastIndexOf(slash, end - 1))
        above.append(key.text.left(end));

    // From the root down: where that cannot be reached the rest would only keep everybody waiting.
    QStringList folders{localFolder(netPath)};
    const int names = key.depth - (isShare ? 2 : 0);
    for (int step = 0; step < names; ++step)
        folders.prepend(folders.first().left(folders.first().lastIndexOf(slash)));
    if (folders.first().endsWith(QLatin1Char(':')) || folders.first().isEmpty())
        folders.first() += slash;
    if (identityOf(folders.first()).isEmpty())
        return;
    const auto addTo = [&identityOf](QStringList *list, const QString &folder) {
        const QByteArray identity = identityOf(folder);
        if (!identity.isEmpty())
            list->append(QString::fromLatin1(identity));
    };
    addTo(&itself, folders.takeLast());
    while (!folders.isEmpty())
        addTo(&above, folders.takeLast());
}

/// The folders of orders that stay, as they are asked about.
class ProtectedFolders
{
public:
    void add(const Place &place, const QString &name)
    {
        for (const QString &known : place.itself)
            folders_.insert(known, name);
        for (const QString &known : place.above)
            above_.insert(known, name);
    }

    QString conflict(const Place &place) const
    {
        for (const QString &known : place.itself) {
            if (folders_.contains(known))
                return QStringLiteral("与未删除的订单 %1 使用同一个目录")
                    .arg(folders_.value(known));
        }
        for (const QString &known : place.itself) {
            if (above_.contains(known))
                return QStringLiteral("目录中包含未删除的订单 %1 的目录").arg(above_.value(known));
        }
        for (const QString &known : place.above) {
            if (folders_.contains(known))
                return QStringLiteral("位于未删除的订单 %1 的目录中").arg(folders_.value(known));
        }
        return {};
    }

private:
    QHash<QString, QString> folders_;
    QHash<QString, QString> above_;
};

bool haveCommon(const QStringList &some, const QStringList &others)
{
    return std::any_of(some.cbegin(), some.cend(),
                       [&others](const QString &each) { return others.contains(each); });
}

QString refusalByItself(const BatchDeleteOrderInfo &order, const FolderKey &key, const Place &place,
                        const Place &publicRoot)
{
    if (order.netPath.trimmed().isEmpty())
        return QStringLiteral("订单没有导片路径");
    if (order.orderPhotoId.isEmpty())
        return QStringLiteral("订单没有照片编号");
    if (key.isRoot)
        return QStringLiteral("导片路径是磁盘或共享的根目录");
    if (key.text.isEmpty() || !platform::componentsBelowRoot(order.netPath))
        return QStringLiteral("导片路径不完整");
    if (haveCommon(place.itself, publicRoot.itself))
        return QStringLiteral("导片路径是公共导片目录");
    if (haveCommon(place.itself, publicRoot.above))
        return QStringLiteral("公共导片目录在该目录之中");
    return {};
}

QString listed(const QVector<BatchDeleteOrderInfo> &orders)
{
    QStringList lines;
    for (const BatchDeleteOrderInfo &order : orders) {
        lines.append(order.displayNumber() + QLatin1Char(' ') + order.customers());
        if (!order.netPath.isEmpty())
            lines.append(QStringLiteral("    ") + order.netPath);
        if (!order.note.isEmpty())
            lines.append(QStringLiteral("    原因: ") + order.note);
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

bool FolderKey::isWithin(const FolderKey &above) const
{
    return text.startsWith(above.text + slash);
}

FolderKey folderKey(const QString &path)
{
    const QString unified = slashed(path.trimmed());
    const bool isShare = unified.startsWith(QLatin1String("//"));
    const bool isDrive =
        unified.size() >= 2 && unified.at(0).isLetter() && unified.at(1) == QLatin1Char(':');
    // "D:photos" would depend on where the program happens to stand, and so would "photos".
    if (isDrive ? unified.size() > 2 && unified.at(2) != slash : !unified.startsWith(slash))
        return {};
    QStringList names;
    if (!splitNames(isDrive ? unified.mid(2) : unified, &names))
        return {};
    const int depth = names.size();
    if (isDrive) {
        names.prepend(unified.left(2).toCaseFolded());
        return {names.join(slash), depth, depth == 0};
    }
    if (!isShare)
        return {slash + names.join(slash), depth, depth == 0};
    // Names such as "\\?\D:\photos" are another way of writing what is compared here.
    const QString server = unified.section(slash, 0, 0, QString::SectionSkipEmpty);
    if (server == QLatin1String("?") || server == QLatin1String("."))
        return {};
    return {QStringLiteral("//") + names.join(slash), depth, depth <= 2};
}

QHash<QString, QString> refusals(const QVector<BatchDeleteOrderInfo> &listed,
                                 const QString &publicPath, const IdentityOf &identityOf)
{
    struct Candidate
    {
        const BatchDeleteOrderInfo *order;
        Place place;
    };
    const Place publicRoot(publicPath, folderKey(publicPath), identityOf);
    QHash<QString, QString> refused;
    ProtectedFolders kept;
    QVector<Candidate> candidates;
    for (const BatchDeleteOrderInfo &order : listed) {
        const FolderKey key = folderKey(order.netPath);
        const Place place(order.netPath, key, identityOf);
        const QString reason =
            order.checked ? refusalByItself(order, key, place, publicRoot) : QString();
        if (!reason.isEmpty())
            refused.insert(order.id, reason);
        if (order.checked && reason.isEmpty())
            candidates.append({&order, place});
        else
            kept.add(place, order.displayNumber());
    }
    // An order that is refused stays, and so do the orders that share files with it.
    for (bool changed = true; changed;) {
        changed = false;
        for (int index = candidates.size() - 1; index >= 0; --index) {
            const Candidate candidate = candidates.at(index);
            const QString reason = kept.conflict(candidate.place);
            if (reason.isEmpty())
                continue;
            refused.insert(candidate.order->id, reason);
            kept.add(candidate.place, candidate.order->displayNumber());
            candidates.removeAt(index);
            changed = true;
        }
    }
    return refused;
}

QString linkRefusal(const QString &netPath, const QString &publicPath)
{
    const FolderKey key = folderKey(netPath);
    const FolderKey publicRoot = folderKey(publicPath);
    QString path = localFolder(netPath);
    QStringList looked{path};
    if (!publicRoot.text.isEmpty() && key.isWithin(publicRoot)) {
        for (int step = 1; step < key.depth - publicRoot.depth; ++step) {
            path = path.left(path.lastIndexOf(slash));
            looked.append(path);
        }
    }
    for (const QString &folder : qAsConst(looked)) {
        if (platform::isLink(folder))
            return QStringLiteral("目录或其上级目录是链接或挂载点: %1").arg(folder);
    }
    return {};
}

DeletionPlan plan(const QVector<BatchDeleteOrderInfo> &listed, const QString &publicPath)
{
    // A refusal for a link makes the order one that stays, which others may share files with.
    QVector<BatchDeleteOrderInfo> judged = listed;
    QHash<QString, QString> links;
    for (BatchDeleteOrderInfo &order : judged) {
        const QString reason = order.checked && !order.netPath.isEmpty()
                                   ? linkRefusal(order.netPath, publicPath)
                                   : QString();
        if (reason.isEmpty())
            continue;
        links.insert(order.id, reason);
        order.checked = false;
    }
    QHash<QString, QByteArray> identities;
    const auto identityOf = [&identities](const QString &folder) {
        const auto known = identities.constFind(folder);
        return known != identities.constEnd()
                   ? *known
                   : *identities.insert(folder, platform::folderIdentity(folder));
    };
    const QHash<QString, QString> refused = refusals(judged, publicPath, identityOf);
    DeletionPlan plan;
    for (const BatchDeleteOrderInfo &candidate : listed) {
        if (!candidate.checked)
            continue;
        BatchDeleteOrderInfo order = candidate;
        order.note = links.value(order.id, refused.value(order.id));
        (order.note.isEmpty() ? plan.orders : plan.refused).append(order);
    }
    return plan;
}

QVector<BatchDeleteFileInfo> merged(const QVector<BatchDeleteFileInfo> &before,
                                    QVector<BatchDeleteFileInfo> scanned)
{
    QHash<QString, int> known;
    for (int index = 0; index < before.size(); ++index) {
        if (before.at(index).state != BatchDeleteFileInfo::NotDeleted)
            known.insert(before.at(index).fullPath(), index);
    }
    if (known.isEmpty())
        return scanned;
    for (BatchDeleteFileInfo &file : scanned) {
        const auto found = known.constFind(file.fullPath());
        if (found == known.constEnd() || before.at(*found).isRemoved())
            continue;
        file.state = before.at(*found).state;
        file.reason = before.at(*found).reason;
    }
    for (const BatchDeleteFileInfo &file : before) {
        if (file.isRemoved())
            scanned.append(file);
    }
    return scanned;
}

QString confirmation(const DeletionPlan &plan)
{
    QString text = QStringLiteral("下列 %1 个订单的目录将被清空，其中的全部文件会永久删除，"
                                  "无法恢复。确认要继续吗？\n\n%2")
                       .arg(plan.orders.size())
                       .arg(listed(plan.orders));
    if (!plan.refused.isEmpty())
        text += QStringLiteral("\n\n") + refusedNotice(plan);
    return text;
}

QString refusedNotice(const DeletionPlan &plan)
{
    return QStringLiteral("下列 %1 个订单不会删除：\n\n%2")
        .arg(plan.refused.size())
        .arg(listed(plan.refused));
}

} // namespace deletionrules
