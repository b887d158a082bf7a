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

/// The keys of the folders above \a key, the nearest first.
QStringList foldersAbove(const QString &key)
{
    QStringList above;
    for (int end = key.lastIndexOf(slash); end > 0; end = key.lastIndexOf(slash, end - 1))
        above.append(key.left(end));
    return above;
}

/// The folders of orders that stay, as they are asked about.
class ProtectedFolders
{
public:
    void add(const FolderKey &key, const QString &name)
    {
        if (key.text.isEmpty())
            return;
        folders_.insert(key.text, name);
        const auto above = foldersAbove(key.text);
        for (const QString &folder : above)
            above_.insert(folder, name);
    }

    QString conflict(const FolderKey &key) const
    {
        if (folders_.contains(key.text)) {
            return QStringLiteral("与未删除的订单 %1 使用同一个目录").arg(folders_.value(key.text));
        }
        if (above_.contains(key.text))
            return QStringLiteral("目录中包含未删除的订单 %1 的目录").arg(above_.value(key.text));
        const auto above = foldersAbove(key.text);
        for (const QString &folder : above) {
            if (folders_.contains(folder)) {
                return QStringLiteral("位于未删除的订单 %1 的目录中").arg(folders_.value(folder));
            }
        }
        return {};
    }

private:
    QHash<QString, QString> folders_;
    QHash<QString, QString> above_;
};

QString refusalByItself(const BatchDeleteOrderInfo &order, const FolderKey &key,
                        const FolderKey &publicRoot)
{
    if (order.netPath.trimmed().isEmpty())
        return QStringLiteral("订单没有导片路径");
    if (order.orderPhotoId.isEmpty())
        return QStringLiteral("订单没有照片编号");
    if (key.text.isEmpty() || QDir::isRelativePath(platform::toLocalPath(order.netPath)))
        return QStringLiteral("导片路径不完整");
    if (key.isRoot)
        return QStringLiteral("导片路径是磁盘或共享的根目录");
    if (publicRoot.text == key.text)
        return QStringLiteral("导片路径是公共导片目录");
    if (!publicRoot.text.isEmpty() && publicRoot.isWithin(key))
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
    if (isDrive)
        return {unified.left(2).toCaseFolded() + slash + names.join(slash), names.isEmpty()};
    if (!isShare)
        return {slash + names.join(slash), names.isEmpty()};
    // Names such as "\\?\D:\photos" are another way of writing what is compared here.
    const QString server = unified.section(slash, 0, 0, QString::SectionSkipEmpty);
    if (server == QLatin1String("?") || server == QLatin1String("."))
        return {};
    return {QStringLiteral("//") + names.join(slash), names.size() <= 2};
}

QHash<QString, QString> refusals(const QVector<BatchDeleteOrderInfo> &listed,
                                 const QString &publicPath)
{
    struct Candidate
    {
        const BatchDeleteOrderInfo *order;
        FolderKey key;
    };
    const FolderKey publicRoot = folderKey(publicPath);
    QHash<QString, QString> refused;
    ProtectedFolders kept;
    QVector<Candidate> candidates;
    for (const BatchDeleteOrderInfo &order : listed) {
        const FolderKey key = folderKey(order.netPath);
        const QString reason = order.checked ? refusalByItself(order, key, publicRoot) : QString();
        if (!reason.isEmpty())
            refused.insert(order.id, reason);
        if (order.checked && reason.isEmpty())
            candidates.append({&order, key});
        else
            kept.add(key, order.displayNumber());
    }
    // An order that is refused stays, and so do the orders that share files with it.
    for (bool changed = true; changed;) {
        changed = false;
        for (int index = candidates.size() - 1; index >= 0; --index) {
            const Candidate candidate = candidates.at(index);
            const QString reason = kept.conflict(candidate.key);
            if (reason.isEmpty())
                continue;
            refused.insert(candidate.order->id, reason);
            kept.add(candidate.key, candidate.order->displayNumber());
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
    QString path = QDir::cleanPath(QDir::fromNativeSeparators(platform::toLocalPath(netPath)));
    QStringList looked{path};
    if (!publicRoot.text.isEmpty() && key.isWithin(publicRoot)) {
        const int below = key.text.count(slash) - publicRoot.text.count(slash);
        for (int step = 1; step < below; ++step) {
            path = path.left(path.lastIndexOf(slash));
            looked.append(path);
        }
    }
    for (const QString &folder : qAsConst(looked)) {
        if (platform::isLink(folder))
            return QStringLiteral("目录或其上级目录是链接: %1").arg(folder);
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
    const QHash<QString, QString> refused = refusals(judged, publicPath);
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
