#include "fileimport/imported/leftphotocleanup.h"

#include "fileimport/imported/originalrequests.h"
#include "fileimport/rules/importrules.h"
#include "ledger/ledger.h"
#include "net/orderfiles.h"
#include "pending/pendingdesk.h"
#include "tasks/background.h"

#include <QDateTime>

#include <algorithm>
#include <iterator>
#include <utility>

LeftPhotoCleanup::LeftPhotoCleanup(QObject *parent)
    : QObject(parent), lookup_(this, &importrequests::readOrders), listing_(this)
{
}

bool LeftPhotoCleanup::isOfOriginals(const ledger::Deletion &deletion)
{
    const QString folder = deletion.file.path.section(QLatin1Char('\\'), -2, -2);
    return importrules::subFolders(ImportMode::Originals).contains(folder);
}

bool LeftPhotoCleanup::start(const QVector<ledger::Deletion> &files,
                             const orderqueries::Identity &identity, const QString &publicPath)
{
    if (busy_)
        return false;
    busy_ = true;
    files_ = files;
    results_.clear();
    problems_.clear();
    QVector<OrderLookup<ImportOrder>::Wanted> wanted;
    QSet<OrderIdentity> known;
    for (const ledger::Deletion &file : files) {
        if (known.contains(file.order.identity))
            continue;
        known.insert(file.order.identity);
        wanted.append({file.order.identity, searchedNumber(file.order.number)});
    }
    lookup_.start(wanted, identity, publicPath, [this](const auto &answer) { onOrders(answer); });
    return true;
}

void LeftPhotoCleanup::onOrders(const OrderLookup<ImportOrder>::Answer &answer)
{
    if (!answer.missing.isEmpty())
        problems_.append(
            answer.reply.isSuccess()
                ? QStringLiteral("服务端没有找到 %1 个订单，文件保留").arg(answer.missing.size())
                : QStringLiteral("订单查询失败，文件保留"));
    orders_ = answer.orders;
    nextOrder();
}

void LeftPhotoCleanup::nextOrder()
{
    claim_.release();
    if (!orders_.isEmpty()) {
        list(orders_.takeFirst());
        return;
    }
    busy_ = false;
    QStringList lines{leftfiles::textOf(results_)};
    emit finished((lines + problems_).join(QLatin1Char('\n')));
}

void LeftPhotoCleanup::list(const ImportOrder &order)
{
    const auto conflict = ordersatwork::claim(
        {order.identity()}, importrules::toolName(ImportMode::Originals), &claim_);
    if (conflict) {
        problems_.append(ordersatwork::refusal(order.displayName(), conflict->tool));
        nextOrder();
        return;
    }
    timestamp_ = QString::number(QDateTime::currentMSecsSinceEpoch());
    listing_.start(orderfiles::listAction,
                   originalrequests::listBody(originalrequests::orderMap(order), timestamp_),
                   [this, order](const ServiceReply &reply) { onListing(order, reply); });
}

void LeftPhotoCleanup::onListing(const ImportOrder &order, const ServiceReply &reply)
{
    if (!reply.isSuccess() || orderfiles::isStale(reply.object, timestamp_)) {
        problems_.append(order.displayName() + QStringLiteral(" 的照片列表读取失败，文件保留"));
        nextOrder();
        return;
    }
    onDisk(
        this, importrules::importPathOf(order),
        [order, object = reply.object, files = filesOf(order.identity())] {
            leftfiles::Listing listing;
            listing.orderFolder =
                importrules::hasFolder(order) ? importrules::importPathOf(order) : QString();
            const auto entries = originalrequests::readListing(object);
            for (const PhotoEntry &entry : entries) {
                listing.photos << entry.id << entry.imgName;
                listing.paths << entry.localPath << entry.variants;
            }
            return leftfiles::remove(files, listing);
        },
        [this](const QVector<leftfiles::Result> &results) { onRemoved(results); });
}

void LeftPhotoCleanup::onRemoved(const QVector<leftfiles::Result> &results)
{
    QVector<ledger::DeletionId> kept;
    for (const leftfiles::Result &result : results) {
        if (result.isDone())
            Ledger::current().finishDeletion(result.id);
        else if (result.ending != leftfiles::Ending::Failed)
            kept.append(result.id); // told once; it stays whatever is tried
    }
    Ledger::current().dismissDeletions(kept);
    results_ += results;
    nextOrder();
}

QVector<ledger::Deletion> LeftPhotoCleanup::filesOf(const OrderIdentity &order) const
{
    QVector<ledger::Deletion> files;
    std::copy_if(files_.cbegin(), files_.cend(), std::back_inserter(files),
                 [&order](const ledger::Deletion &file) { return file.order.identity == order; });
    return files;
}
