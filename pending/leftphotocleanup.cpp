#include "pending/leftphotocleanup.h"

#include "ledger/ledger.h"
#include "net/orderfolders.h"
#include "pending/pendingdesk.h"
#include "tasks/background.h"

#include <QDateTime>

#include <algorithm>
#include <iterator>

namespace {

using FoundOrder = LeftPhotoCleanup::FoundOrder;

orderqueries::FoundOrders<FoundOrder> readOrders(const QJsonObject &reply,
                                                 const orderqueries::SearchedBranch &branch)
{
    orderqueries::FoundOrders<FoundOrder> found;
    const auto folders = orderfolders::read(reply, branch);
    for (const orderfolders::OrderFolder &each : folders) {
        const auto listed = orderfiles::readWithOrder(reply, each.order);
        if (listed)
            found.orders.append({each.order, each.path, *listed});
    }
    return found;
}

/// All that the service names of \a order. What is listed with the order itself holds the photos
/// that the customers chose, too, wherever they lie: those count by where, if that is known.
leftfiles::Listing listingOf(const FoundOrder &order,
                             const QVector<orderfiles::ListedFile> &imported)
{
    leftfiles::Listing listing;
    listing.orderFolder = order.folder;
    for (const orderfiles::ListedFile &file : imported) {
        listing.photos << file.id << file.name;
        listing.paths << file.localPath;
    }
    for (const orderfiles::ListedFile &file : order.listed) {
        listing.photos << file.id;
        if (file.localPath.isEmpty())
            listing.photos << file.name;
        else
            listing.paths << file.localPath;
    }
    return listing;
}

QVector<ledger::DeletionId> idsOf(const QVector<ledger::Deletion> &files)
{
    QVector<ledger::DeletionId> ids;
    for (const ledger::Deletion &file : files)
        ids.append(file.id);
    return ids;
}

/// Removes those of \a files that may go. What was copied there since the photo was deleted is
/// another file, although it may look the same: it waits for being registered.
QVector<leftfiles::Result> removeFiles(const QVector<ledger::Deletion> &files,
                                       const leftfiles::Listing &listing)
{
    QStringList paths;
    for (const ledger::Deletion &file : files)
        paths.append(file.file.path);
    const auto copies = Ledger::current().answer(
        [&paths](const LedgerReader &reader) { return reader.copiesOnto(paths); });
    QVector<ledger::Deletion> untouched;
    QVector<leftfiles::Result> results;
    for (int index = 0; index < files.size(); ++index) {
        const ledger::Deletion &file = files.at(index);
        const ledger::Copy &copy = copies.at(index);
        if (copy.id != 0 &&
            (copy.begunMs >= file.begunMs || copy.registration == ledger::Registration::Awaited))
            results.append({file.id, file.file.path, leftfiles::Ending::Changed});
        else
            untouched.append(file);
    }
    return results + leftfiles::remove(untouched, listing);
}

} // namespace

LeftPhotoCleanup::LeftPhotoCleanup(const QString &tool, QObject *parent)
    : QObject(parent), tool_(tool), lookup_(this, &readOrders), listing_(this)
{
}

bool LeftPhotoCleanup::start(Task task, const QVector<ledger::Deletion> &files,
                             const orderqueries::Identity &identity, const QString &publicPath)
{
    if (busy_)
        return false;
    busy_ = true;
    task_ = task;
    named_ = 0;
    forgotten_ = 0;
    files_ = files;
    identity_ = identity;
    publicPath_ = publicPath;
    orders_.clear();
    results_.clear();
    problems_.clear();
    for (const ledger::Deletion &file : files) {
        const bool isKnown =
            std::any_of(orders_.cbegin(), orders_.cend(), [&file](const ledger::OrderKey &order) {
                return order.identity == file.order.identity;
            });
        if (!isKnown)
            orders_.append(file.order);
    }
    nextOrder();
    return true;
}

void LeftPhotoCleanup::nextOrder()
{
    claim_.release();
    while (!orders_.isEmpty()) {
        const ledger::OrderKey order = orders_.takeFirst();
        const auto conflict = ordersatwork::claim({order.identity}, tool_, &claim_);
        if (conflict) {
            problems_.append(ordersatwork::refusal(order.number, conflict->tool));
            continue;
        }
        lookup_.start({{order.identity, searchedNumber(order.number)}}, identity_, publicPath_,
                      [this](const auto &answer) { onFound(answer); });
        return;
    }
    busy_ = false;
    const QStringList lines{task_ == Task::Remove ? leftfiles::textOf(results_)
                                                  : leftfiles::verifiedText(named_, forgotten_)};
    emit finished((lines + problems_).join(QLatin1Char('\n')));
}

void LeftPhotoCleanup::onFound(const OrderLookup<FoundOrder>::Answer &answer)
{
    if (!answer.orders.isEmpty()) {
        list(answer.orders.constFirst());
        return;
    }
    problems_.append(answer.reply.isSuccess()
                         ? QStringLiteral("服务端没有找到订单 %1 或它的导片路径，文件保留")
                               .arg(answer.missing.constFirst().number)
                         : QStringLiteral("订单查询失败，文件保留"));
    if (!answer.reply.isSuccess())
        orders_.clear(); // the others would not fare better
    nextOrder();
}

void LeftPhotoCleanup::list(const FoundOrder &order)
{
    timestamp_ = QString::number(QDateTime::currentMSecsSinceEpoch());
    listing_.start(orderfiles::listAction,
                   orderfiles::listBody(order.order.branch, order.order.orderPhotoId, timestamp_),
                   [this, order](const ServiceReply &reply) { onListing(order, reply); });
}

void LeftPhotoCleanup::onListing(const FoundOrder &order, const ServiceReply &reply)
{
    const auto files = filesOf(order.order);
    if (!reply.isSuccess() || orderfiles::isStale(reply.object, timestamp_)) {
        problems_.append(files.constFirst().order.number +
                         QStringLiteral(" 的照片列表读取失败，文件保留"));
        nextOrder();
        return;
    }
    if (task_ == Task::Verify) {
        verify(files, listingOf(order, orderfiles::readList(reply.object)));
        return;
    }
    onDisk(
        this, order.folder,
        [order, object = reply.object, files] {
            return removeFiles(files, listingOf(order, orderfiles::readList(object)));
        },
        [this](const QVector<leftfiles::Result> &results) { onRemoved(results); });
}

void LeftPhotoCleanup::verify(const QVector<ledger::Deletion> &files,
                              const leftfiles::Listing &listing)
{
    QVector<ledger::Deletion> named;
    QVector<ledger::Deletion> forgotten;
    for (const ledger::Deletion &file : files)
        (leftfiles::isNamed(file.file, listing) ? named : forgotten).append(file);
    Ledger::current().dismissDeletions(idsOf(named));
    Ledger::current().announceDeletions(idsOf(forgotten));
    named_ += leftfiles::photosAmong(named);
    forgotten_ += leftfiles::photosAmong(forgotten);
    nextOrder();
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
