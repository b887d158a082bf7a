#include "batchdelete/rules/deletionrules.h"

#include "files/pathgate.h"
#include "platform/folderlisting.h"
#include "platform/pathform.h"

#include <QDir>
#include <QRegularExpression>

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

/// A folder, and those above it, each by everything it can be known by: the key of its path, and
/// what the disk says.
class Place
{
public:
    Place(const QString &netPath, const FolderKey &key, const IdentityOf &identityOf);

    /// The folder itself for 0, the one that holds it for 1, and so on.
    QStringList at(int level) const { return levels_.value(level); }
    bool isBelow(const QStringList &folder) const
    {
        return std::any_of(levels_.cbegin() + (levels_.isEmpty() ? 0 : 1), levels_.cend(),
                           [&folder](const QStringList &above) { return meet(above, folder); });
    }
    int levels() const { return levels_.size(); }

    static bool meet(const QStringList &some, const QStringList &others)
    {
        return std::any_of(some.cbegin(), some.cend(),
                           [&others](const QString &each) { return others.contains(each); });
    }

private:
    QVector<QStringList> levels_;
};

Place::Place(const QString &netPath, const FolderKey &key, const IdentityOf &identityOf)
{
    if (key.text.isEmpty())
        return;
    levels_.append(QStringList(key.text));
    const bool isShare = key.text.startsWith(QLatin1String("//"));
    for (int end = key.text.lastIndexOf(slash); end > (isShare ? 1 : 0);
         end = key.text.lastIndexOf(slash, end - 1))
        levels_.append(QStringList(key.text.left(end)));

    // From the root down: where that cannot be reached the rest would only keep everybody waiting.
    QStringList folders{localFolder(netPath)};
    const int names = key.depth - (isShare ? 2 : 0);
    for (int step = 0; step < names; ++step)
        folders.prepend(folders.first().left(folders.first().lastIndexOf(slash)));
    if (folders.first().endsWith(QLatin1Char(':')) || folders.first().isEmpty())
        folders.first() += slash;
    if (identityOf(folders.first()).isEmpty())
        return;
    levels_.resize(std::max(levels_.size(), folders.size()));
    for (QStringList &level : levels_) {
        if (folders.isEmpty())
            break;
        const QByteArray identity = identityOf(folders.takeLast());
        if (!identity.isEmpty())
            level.append(QString::fromLatin1(identity));
    }
}

/// The folders of orders that stay, as they are asked about.
class ProtectedFolders
{
public:
    void add(const Place &place, const BatchDeleteOrderInfo &order)
    {
        const Culprit culprit{order.displayNumber(), order.netPath};
        for (int level = 0; level < place.levels(); ++level) {
            const QStringList folder = place.at(level);
            for (const QString &known : folder)
                (level == 0 ? folders_ : above_).insert(known, culprit);
        }
    }

    QString conflict(const Place &place) const
    {
        const QStringList itself = place.at(0);
        for (const QString &known : itself) {
            if (folders_.contains(known))
                return folders_.value(known).worded(
                    QStringLiteral("与未删除的订单 %1 使用同一个目录"));
        }
        for (const QString &known : itself) {
            if (above_.contains(known))
                return above_.value(known).worded(
                    QStringLiteral("目录中包含未删除的订单 %1 的目录"));
        }
        for (int level = 1; level < place.levels(); ++level) {
            const QStringList folder = place.at(level);
            for (const QString &known : folder) {
                if (folders_.contains(known))
                    return folders_.value(known).worded(
                        QStringLiteral("位于未删除的订单 %1 的目录中"));
            }
        }
        return {};
    }

private:
    struct Culprit
    {
        QString number;
        QString netPath;

        QString worded(const QString &text) const
        {
            const QString name = number.isEmpty() ? QStringLiteral("(无编号)") : number;
            return text.arg(name) + QStringLiteral(": ") + netPath;
        }
    };

    QHash<QString, Culprit> folders_;
    QHash<QString, Culprit> above_;
};

QVector<Place> placesOf(const QStringList &paths, const IdentityOf &identityOf)
{
    QVector<Place> places;
    for (const QString &path : paths)
        places.append(Place(path, folderKey(path), identityOf));
    return places;
}

/// Whether the folder holds the orders of a year or of a month.
bool isOfYearOrMonth(const FolderKey &key, const Place &place, const Place &publicRoot)
{
    static const QRegularExpression year(QStringLiteral("^[0-9]{4}$"));
    static const QRegularExpression month(QStringLiteral("^(?:[0-9]{1,2}|[0-9]{4}-[0-9]{2})$"));
    const QString name = key.text.section(slash, -1);
    const QString above = key.text.section(slash, -2, -2);
    return (year.match(name).hasMatch() && Place::meet(place.at(1), publicRoot.at(0))) ||
           (month.match(name).hasMatch() && year.match(above).hasMatch() &&
            Place::meet(place.at(2), publicRoot.at(0)));
}

/// Why the folder belongs to many orders. What lies in it is none of its business then.
QString refusalAsCommon(const FolderKey &key, const Place &place, const QVector<Place> &publicRoots)
{
    if (key.isRoot)
        return QStringLiteral("导片路径是磁盘或共享的根目录");
    for (const Place &root : publicRoots) {
        if (Place::meet(place.at(0), root.at(0)))
            return QStringLiteral("导片路径是公共导片目录");
        if (root.isBelow(place.at(0)))
            return QStringLiteral("公共导片目录在该目录之中");
        if (isOfYearOrMonth(key, place, root))
            return QStringLiteral("导片路径是公共导片目录中的年份或月份目录");
    }
    return {};
}

QString refusalAsFolder(const QString &netPath, const QString &asCommon)
{
    if (netPath.trimmed().isEmpty())
        return QStringLiteral("订单没有导片路径");
    if (!asCommon.isEmpty())
        return asCommon;
    const pathgate::Flaw flaw = pathgate::flawOf(netPath);
    return flaw == pathgate::Flaw::None
               ? QString()
               : QStringLiteral("导片路径无法使用: %1，请在后台修改该订单的本地云导片路径")
                     .arg(pathgate::reasonOf(flaw));
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

QString localFolder(const QString &netPath)
{
    return QDir::cleanPath(QDir::fromNativeSeparators(platform::toLocalPath(netPath)));
}

QString folderRefusal(const QString &netPath, const QStringList &publicRoots)
{
    const IdentityOf unknown = [](const QString &) { return QByteArray(); };
    const FolderKey key = folderKey(netPath);
    const Place place(netPath, key, unknown);
    return refusalAsFolder(netPath, refusalAsCommon(key, place, placesOf(publicRoots, unknown)));
}

QStringList refusals(const QVector<BatchDeleteOrderInfo> &listed, const QStringList &publicRoots,
                     const IdentityOf &identityOf)
{
    const QVector<Place> roots = placesOf(publicRoots, identityOf);
    QVector<Place> places;
    QStringList refused;
    QVector<int> candidates;
    ProtectedFolders kept;
    for (int index = 0; index < listed.size(); ++index) {
        const BatchDeleteOrderInfo &order = listed.at(index);
        const FolderKey key = folderKey(order.netPath);
        const Place place(order.netPath, key, identityOf);
        const QString asCommon = refusalAsCommon(key, place, roots);
        QString reason = refusalAsFolder(order.netPath, asCommon);
        if (reason.isEmpty() && order.orderPhotoId.isEmpty())
            reason = QStringLiteral("订单没有照片编号");
        places.append(place);
        refused.append(order.checked ? reason : QString());
        if (order.checked && reason.isEmpty())
            candidates.append(index);
        else if (asCommon.isEmpty())
            kept.add(place, order);
    }
    // An order that is refused stays, and so do the orders that share files with it.
    for (bool changed = true; changed;) {
        QVector<int> left;
        for (const int index : qAsConst(candidates)) {
            refused[index] = kept.conflict(places.at(index));
            if (refused.at(index).isEmpty())
                left.append(index);
            else
                kept.add(places.at(index), listed.at(index));
        }
        changed = left.size() < candidates.size();
        candidates = left;
    }
    return refused;
}

QStringList foldersAbove(const QString &netPath, const QStringList &publicRoots)
{
    const FolderKey key = folderKey(netPath);
    for (const QString &publicRoot : publicRoots) {
        const FolderKey root = folderKey(publicRoot);
        if (root.text.isEmpty() || !key.isWithin(root))
            continue;
        QStringList folders;
        QString path = localFolder(netPath);
        for (int step = 1; step < key.depth - root.depth; ++step) {
            path = path.left(path.lastIndexOf(slash));
            folders.prepend(path);
        }
        return folders;
    }
    return {};
}

QString linkRefusal(const QString &netPath, const QStringList &publicRoots)
{
    QStringList looked = foldersAbove(netPath, publicRoots);
    looked.append(localFolder(netPath));
    for (const QString &folder : qAsConst(looked)) {
        if (platform::isLink(folder))
            return QStringLiteral("目录或其上级目录是链接或挂载点: %1").arg(folder);
    }
    return {};
}

DeletionPlan plan(const QVector<BatchDeleteOrderInfo> &listed, const QStringList &publicRoots)
{
    // A refusal for a link makes the order one that stays, which others may share files with.
    QVector<BatchDeleteOrderInfo> judged = listed;
    QStringList links;
    for (BatchDeleteOrderInfo &order : judged) {
        const bool looked = order.checked && folderRefusal(order.netPath, publicRoots).isEmpty();
        links.append(looked ? linkRefusal(order.netPath, publicRoots) : QString());
        order.checked = order.checked && links.last().isEmpty();
    }
    QHash<QString, QByteArray> identities;
    const auto identityOf = [&identities](const QString &folder) {
        const auto known = identities.constFind(folder);
        return known != identities.constEnd()
                   ? *known
                   : *identities.insert(folder, platform::folderIdentity(folder));
    };
    const QStringList refused = refusals(judged, publicRoots, identityOf);
    DeletionPlan plan;
    for (int index = 0; index < listed.size(); ++index) {
        if (!listed.at(index).checked)
            continue;
        BatchDeleteOrderInfo order = listed.at(index);
        order.note = links.at(index) + refused.at(index); // never both
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
        const BatchDeleteFileInfo &was = before.at(*found);
        const bool same = file.size == was.size && file.modified == was.modified;
        file.state = same ? was.state : int(BatchDeleteFileInfo::Failed);
        file.announced = was.announced && same;
        if (!file.kept)
            file.reason = same ? was.reason : changedFileText();
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
