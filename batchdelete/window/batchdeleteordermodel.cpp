#include "batchdelete/window/batchdeleteordermodel.h"

#include <QSet>

#include <algorithm>
#include <numeric>

namespace {

using Model = BatchDeleteOrderModel;
using Order = BatchDeleteOrderInfo;
using Column = records::Column<Order>;
using records::from;

constexpr int whole = 100;

QVariant ticksFirst(const Order &order)
{
    return order.checked ? 0 : 1;
}

QVariant counts(const Order &order)
{
    return QStringLiteral("%1/%2/%3").arg(order.succeeded()).arg(order.failed()).arg(order.total());
}

constexpr Column columns[] = {
    Column(Model::CheckColumn, u"选择").sorted(ticksFirst),
    Column(Model::NumberColumn, u"订单号", from<&Order::displayNumber>),
    Column(Model::CustomerColumn, u"客户姓名", from<&Order::customers>),
    Column(Model::PhotographerColumn, u"摄影师", from<&Order::role1>),
    Column(Model::CompletionColumn, u"结单日期", from<&Order::fulfilTime>),
    Column(Model::ProgressColumn, u"成功/失败/总数", counts)
        .sorted(from<&Order::total>)
        .withTip(from<&Order::note>),
    Column(Model::RetoucherColumn, u"样前修片师", from<&Order::tiaoseName>),
    Column(Model::PathColumn, u"导片路径", from<&Order::netPath>),
};

} // namespace

BatchDeleteOrderModel::BatchDeleteOrderModel(QObject *parent)
    : OrderTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}

void BatchDeleteOrderModel::setOrders(QVector<BatchDeleteOrderInfo> orders,
                                      const QVector<BatchDeleteOrderInfo> &unlisted)
{
    unlisted_ = unlisted;
    QSet<OrderIdentity> listed;
    for (BatchDeleteOrderInfo &order : orders) {
        listed.insert(order.identity());
        const int before = rowOf(order.identity());
        if (before < 0)
            continue;
        // The folder may be another one by now; then nothing in the earlier one is the order's any
        // more, only that some files are gone has still to be told.
        const bool moved = records_.at(before).netPath != order.netPath;
        if (moved && records_.at(before).unreported() == 0)
            continue;
        order.setFiles(moved ? records_.at(before).unreportedFiles() : records_.at(before).files());
        order.note = records_.at(before).note;
        order.listed = records_.at(before).listed;
        order.processed = records_.at(before).processed;
        order.outdated = order.processed;
    }
    for (BatchDeleteOrderInfo order : qAsConst(records_)) {
        if (order.unreported() == 0 || listed.contains(order.identity()))
            continue;
        order.checked = false;
        orders.append(order);
    }
    reset(orders);
}

void BatchDeleteOrderModel::clear()
{
    unlisted_.clear();
    reset({});
}

int BatchDeleteOrderModel::unreported() const
{
    return std::accumulate(
        records_.cbegin(), records_.cend(), 0,
        [](int sum, const BatchDeleteOrderInfo &order) { return sum + order.unreported(); });
}

void BatchDeleteOrderModel::setFile(int row, int index, const BatchDeleteFileInfo &file)
{
    changeCells(row, ProgressColumn, ProgressColumn,
                [&](BatchDeleteOrderInfo &order) { order.setFile(index, file); });
}

QVector<BatchDeleteOrderInfo> BatchDeleteOrderModel::checkedOrders() const
{
    QVector<BatchDeleteOrderInfo> checked;
    std::copy_if(records_.cbegin(), records_.cend(), std::back_inserter(checked),
                 [](const BatchDeleteOrderInfo &order) { return order.checked; });
    return checked;
}

Qt::CheckState BatchDeleteOrderModel::allChecked() const
{
    const auto checked =
        std::count_if(records_.cbegin(), records_.cend(),
                      [](const BatchDeleteOrderInfo &order) { return order.checked; });
    if (checked == 0)
        return Qt::Unchecked;
    return checked == records_.size() ? Qt::Checked : Qt::PartiallyChecked;
}

void BatchDeleteOrderModel::checkAll(bool checked)
{
    if (records_.isEmpty() || !checkable_)
        return;
    for (BatchDeleteOrderInfo &order : records_)
        order.checked = checked;
    emit dataChanged(index(0, CheckColumn), index(records_.size() - 1, CheckColumn));
    emit checkStateChanged(checked ? Qt::Checked : Qt::Unchecked);
}

void BatchDeleteOrderModel::uncheck(int row)
{
    if (!hasRow(row) || !records_.at(row).checked)
        return;
    change(row, [](BatchDeleteOrderInfo &order) { order.checked = false; });
    emit checkStateChanged(Qt::Unchecked);
}

void BatchDeleteOrderModel::setCheckable(bool checkable)
{
    checkable_ = checkable;
    if (!records_.isEmpty())
        emit dataChanged(index(0, CheckColumn), index(records_.size() - 1, CheckColumn));
}

QVariant BatchDeleteOrderModel::other(const BatchDeleteOrderInfo &order, int column, int role) const
{
    switch (role) {
    case Qt::CheckStateRole:
        return column == CheckColumn ? QVariant(int(order.checked ? Qt::Checked : Qt::Unchecked))
                                     : QVariant();
    case PercentRole:
        return order.total() == 0
                   ? 0
                   : int(qint64(whole) * (order.succeeded() + order.failed()) / order.total());
    case SucceededRole:
        return order.succeeded();
    case FailedRole:
        return order.failed();
    case NoteRole:
        return order.note;
    default:
        return {};
    }
}

bool BatchDeleteOrderModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || index.column() != CheckColumn || role != Qt::CheckStateRole ||
        !checkable_)
        return false;
    records_[index.row()].checked = value.toInt() == Qt::Checked;
    emit dataChanged(index, index);
    emit checkStateChanged(value.toInt());
    return true;
}

Qt::ItemFlags BatchDeleteOrderModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.column() == CheckColumn && checkable_)
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}
