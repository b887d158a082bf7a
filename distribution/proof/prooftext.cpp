#include "distribution/proof/prooftext.h"

#include <QDir>

#include <algorithm>

namespace prooftext {

namespace {

constexpr int ordersNamed = 5;

/// The path from the order's folder on.
QString below(const OrderProof &proof, const QString &path)
{
    return QDir(proof.folder).relativeFilePath(path);
}

QString count(const OrderProof &proof)
{
    return QStringLiteral("%1/%2 在位").arg(proof.inPlace).arg(proof.expected);
}

QString line(const OrderProof &proof, const MissingFile &file)
{
    return QStringLiteral("　缺失 %1（%2）")
        .arg(below(proof, file.path), orderproof::textOf(file.why));
}

QString line(const OrderProof &proof, const QString &what, const EarlierFile &file)
{
    return QStringLiteral("　%1 %2（%3 %4）")
        .arg(what, below(proof, file.path),
             file.written.toString(QStringLiteral("yyyy-MM-dd HH:mm")), file.tool);
}

QStringList filesOf(const OrderProof &proof)
{
    QStringList files;
    for (const MissingFile &file : proof.missing)
        files.append(line(proof, file));
    for (const EarlierFile &file : proof.earlier)
        files.append(line(proof, QStringLiteral("以前写入"), file));
    for (const EarlierFile &file : proof.ofOtherCards)
        files.append(line(proof, QStringLiteral("其他工具写入，不移动"), file));
    return files;
}

} // namespace

int earlierCount(const QVector<ProvedOrder> &orders)
{
    int files = 0;
    for (const ProvedOrder &order : orders)
        files += order.proof.earlier.size();
    return files;
}

bool isComplete(const QVector<ProvedOrder> &orders)
{
    return std::all_of(orders.cbegin(), orders.cend(),
                       [](const ProvedOrder &order) { return order.proof.isComplete(); });
}

QString headline(const QVector<ProvedOrder> &orders)
{
    OrderProof all;
    int unread = 0;
    for (const ProvedOrder &order : orders) {
        all.expected += order.proof.expected;
        all.inPlace += order.proof.inPlace;
        all.missing += order.proof.missing;
        unread += order.proof.isRead ? 0 : 1;
    }
    QStringList parts{count(all)};
    if (!all.missing.isEmpty())
        parts.append(QStringLiteral("%1 个缺失").arg(all.missing.size()));
    if (unread > 0)
        parts.append(QStringLiteral("%1 个订单文件夹无法读取").arg(unread));
    const int earlier = earlierCount(orders);
    if (earlier > 0)
        parts.append(QStringLiteral("以前写入、本次没有写入 %1 个").arg(earlier));
    return parts.join(QStringLiteral("，"));
}

QStringList lines(const QVector<ProvedOrder> &orders, int most)
{
    QStringList all;
    int shown = 0;
    int hidden = 0;
    for (const ProvedOrder &order : orders) {
        all.append(QStringLiteral("%1: %2").arg(
            order.number, order.proof.isRead ? count(order.proof)
                                             : QStringLiteral("订单文件夹无法完整读取，没有核对")));
        const QStringList files = filesOf(order.proof);
        const int taken = std::min(most - shown, files.size());
        all += files.mid(0, taken);
        shown += taken;
        hidden += files.size() - taken;
    }
    if (hidden > 0)
        all.append(QStringLiteral("…… 另有 %1 个文件，复制后可见").arg(hidden));
    return all;
}

QString otherFiles(const QVector<ProvedOrder> &orders)
{
    int files = 0;
    QStringList named;
    for (const ProvedOrder &order : orders) {
        if (order.proof.others == 0)
            continue;
        files += order.proof.others;
        named.append(QStringLiteral("%1: %2").arg(order.number).arg(order.proof.others));
    }
    if (files == 0)
        return {};
    if (named.size() > ordersNamed)
        named = named.mid(0, ordersNamed) + QStringList(QStringLiteral("…"));
    return QStringLiteral("订单文件夹中有 %1 个文件不是本次写入的（%2）")
        .arg(QString::number(files), named.join(QStringLiteral("，")));
}

QString putAway(const QVector<PutAway> &results)
{
    int moved = 0;
    QStringList folders;
    for (const PutAway &result : results) {
        moved += result.moved;
        if (!result.folder.isEmpty())
            folders.append(QDir::toNativeSeparators(result.folder));
    }
    if (moved == 0)
        return QStringLiteral("没有移动任何文件");
    const QString where = folders.size() == 1
                              ? folders.first()
                              : QStringLiteral("%1 个订单的“旧文件”").arg(folders.size());
    return QStringLiteral("已将 %1 个文件移到 %2").arg(QString::number(moved), where);
}

} // namespace prooftext
