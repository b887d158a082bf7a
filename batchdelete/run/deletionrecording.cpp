#include "batchdelete/run/deletionrecording.h"

#include "app/context/accountcontext.h"
#include "files/paths.h"
#include "ledger/ledger.h"
#include "ledger/orderkey.h"
#include "platform/folderlisting.h"

namespace {

ledger::OrderKey keyOf(const BatchDeleteOrderInfo &order)
{
    return ledger::orderKey(order.identity(), order.orderPayForKey, order.serviceTimes,
                            {order.mname, order.wname});
}

} // namespace

ledger::RunId DeletionRecording::run(const orderqueries::Identity &identity)
{
    if (run_ == 0) {
        run_ = Ledger::current().beginRun(
            {{AccountContext::uid, identity.shopId, ledger::Work::BatchDeletion},
             AccountContext::uid});
    }
    return run_;
}

DeletionRecording::Rows DeletionRecording::enter(ledger::RunId run,
                                                 const BatchDeleteOrderInfo &order,
                                                 const QVector<BatchDeleteFileInfo> &files)
{
    QVector<ledger::NewDeletion> deletions;
    deletions.reserve(files.size());
    for (const BatchDeleteFileInfo &file : files) {
        if (file.kept)
            continue;
        ledger::NewDeletion deletion;
        deletion.path = convertPathForService(file.fullPath(), {});
        deletion.bytes = file.size;
        deletion.modifiedMs = platform::msOf(file.modified);
        deletions.append(deletion);
    }
    const Rows entered = Ledger::current().beginDeletions(run, keyOf(order), deletions);
    Rows rows;
    rows.reserve(files.size());
    int next = 0;
    for (const BatchDeleteFileInfo &file : files)
        rows.append(file.kept ? 0 : entered.value(next++));
    return rows;
}

void DeletionRecording::setRows(const OrderIdentity &order, const Rows &rows)
{
    order_ = order;
    rows_ = rows;
}

void DeletionRecording::addRows(const OrderIdentity &order,
                                const QVector<BatchDeleteFileInfo> &files, const Rows &rows)
{
    for (int i = 0; i < files.size(); ++i)
        left_[order].insert(files.at(i).fullPath(), rows.value(i));
}

void DeletionRecording::announced(const Rows &rows)
{
    Ledger::current().announceDeletions(rows);
}

void DeletionRecording::deleted(const OrderIdentity &order, int index,
                                const BatchDeleteFileInfo &file)
{
    Ledger::current().finishDeletion(rowOf(order, index, file));
}

void DeletionRecording::failed(const OrderIdentity &order, int index,
                               const BatchDeleteFileInfo &file)
{
    const ledger::DeletionId row = rowOf(order, index, file);
    Ledger::current().failDeletion(row, file.reason);
    left_[order].insert(file.fullPath(), row);
}

void DeletionRecording::reported(const OrderIdentity &order, int index,
                                 const BatchDeleteFileInfo &file)
{
    if (file.state == BatchDeleteFileInfo::NotReported) {
        failed(order, index, file);
        return;
    }
    Ledger::current().reportDeletions({rowOf(order, index, file)});
    if (left_.contains(order))
        left_[order].remove(file.fullPath());
}

ledger::DeletionId DeletionRecording::rowOf(const OrderIdentity &order, int index,
                                            const BatchDeleteFileInfo &file) const
{
    const auto left = left_.constFind(order);
    if (left != left_.cend() && left->contains(file.fullPath()))
        return left->value(file.fullPath());
    return order == order_ ? rows_.value(index) : 0;
}

void DeletionRecording::end()
{
    if (run_ != 0)
        Ledger::current().endRun(run_);
    run_ = 0;
    order_ = {};
    rows_.clear();
}
