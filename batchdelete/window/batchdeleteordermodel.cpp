#include "batchdelete/window/batchdeleteordermodel.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr int whole = 100;

QString shownText(const BatchDeleteOrderInfo &order, int column)
{
    switch (column) {
    case BatchDeleteOrderModel::NumberColumn:
        return order.displayNumber();
    case BatchDeleteOrderModel::CustomerColumn:
        return order.customers();
    case BatchDeleteOrderModel::PhotographerColumn:
        return order.role1;
    case BatchDeleteOrderModel::CompletionColumn:
        return order.fulfilTime;
    case BatchDeleteOrderModel::ProgressColumn:
        return QStringLiteral("%1/%2/%3")
            .arg(order.succeeded())
            .arg(order.failed())
            .arg(order.total());
    case BatchDeleteOrderModel::RetoucherColumn:
        return order.tiaoseName;
    case BatchDeleteOrderModel::PathColumn:
        return order.netPath;
    default:
        return {};
    }
}

QVariant sortValue(const BatchDeleteOrderInfo &order, int column)
{
    if (column == BatchDeleteOrderModel::CheckColumn)
        return order.checked ? 0 : 1;
    if (column == BatchDeleteOrderModel::ProgressColumn)
        return order.total();
    return shownText(order, column);
}

} // namespace

void BatchDeleteOrderModel::setOrders(QVector<BatchDeleteOrderInfo> orders,
                                      const QVector<BatchDeleteOrderInfo> &unlisted)
{
    beginResetModel();
    unlisted_ = unlisted;
    QSet<OrderIdentity> listed;
    for (BatchDeleteOrderInfo &order : orders) {
        listed.insert(order.identity());
        const int before = rowOf(order.identity());
        if (before < 0)
            continue;
        // The folder may be another one by now; then nothing in the earlier one is the order's any
        // more, only that some files are gone has still to be told.
        const bool moved = orders_.at(before).netPath != order.netPath;
        if (moved && orders_.at(before).unreported() == 0)
            continue;
        order.setFiles(moved ? orders_.at(before).unreportedFiles() : orders_.at(before).files());
        order.note = orders_.at(before).note;
        order.listed = orders_.at(before).listed;
        order.processed = orders_.at(before).processed;
    }
    for (BatchDeleteOrderInfo order : qAsConst(orders_)) {
        if (order.unreported() == 0 || listed.contains(order.identity()))
            continue;
        order.checked = false;
        orders.append(order);
    }
    orders_ = std::move(orders);
    rows_.clear();
    for (int row = 0; row < orders_.size(); ++row)
        rows_.insert(orders_.at(row).identity(), row);
    endResetModel();
}

void BatchDeleteOrderModel::clear()
{
    beginResetModel();
    orders_.clear();
    unlisted_.clear();
    rows_.clear();
    endResetModel();
}

int BatchDeleteOrderModel::unreported() const
{
    return std::accumulate(
        orders_.cbegin(), orders_.cend(), 0,
        [](int sum, const BatchDeleteOrderInfo &order) { return sum + order.unreported(); });
}

void BatchDeleteOrderModel::change(int row,
                                   const std::function<void(BatchDeleteOrderInfo &order)> &change)
{
    if (!hasRow(row))
        return;
    change(orders_[row]);
    rowChanged(row);
}

void BatchDeleteOrderModel::setFile(int row, int index, const BatchDeleteFileInfo &file)
{
    if (!hasRow(row))
        return;
    orders_[row].setFile(index, file);
    const QModelIndex cell = this->index(row, ProgressColumn);
    emit dataChanged(cell, cell);
}

QVector<BatchDeleteOrderInfo> BatchDeleteOrderModel::checkedOrders() const
{
    QVector<BatchDeleteOrderInfo> checked;
    std::copy_if(orders_.cbegin(), orders_.cend(), std::back_inserter(checked),
                 [](const BatchDeleteOrderInfo &order) { return order.checked; });
    return checked;
}

Qt::CheckState BatchDeleteOrderModel::allChecked() const
{
    const auto checked =
        std::count_if(orders_.cbegin(), orders_.cend(),
                      [](const BatchDeleteOrderInfo &order) { return order.checked; });
    if (checked == 0)
        return Qt::Unchecked;
    return checked == orders_.size() ? Qt::Checked : Qt::PartiallyChecked;
}

void BatchDeleteOrderModel::checkAll(bool checked)
{
    if (orders_.isEmpty() || !checkable_)
        return;
    for (BatchDeleteOrderInfo &order : orders_)
        order.checked = checked;
    emit dataChanged(index(0, CheckColumn), index(orders_.size() - 1, CheckColumn));
    emit checkStateChanged(checked ? Qt::Checked : Qt::Unchecked);
}

void BatchDeleteOrderModel::setCheckable(bool checkable)
{
    checkable_ = checkable;
    if (!orders_.isEmpty())
        emit dataChanged(index(0, CheckColumn), index(orders_.size() - 1, CheckColumn));
}

int BatchDeleteOrderModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : orders_.size();
}

int BatchDeleteOrderModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant BatchDeleteOrderModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= orders_.size())
        return {};
    const BatchDeleteOrderInfo &order = orders_.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return shownText(order, index.column());
    case Qt::CheckStateRole:
        return index.column() == CheckColumn
                   ? QVariant(int(order.checked ? Qt::Checked : Qt::Unchecked))
                   : QVariant();
    case Qt::ToolTipRole:
        return index.column() == ProgressColumn && !order.note.isEmpty() ? QVariant(order.note)
                                                                         : QVariant();
    case SortRole:
        return sortValue(order, index.column());
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
    orders_[index.row()].checked = value.toInt() == Qt::Checked;
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

QVariant BatchDeleteOrderModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList headers{QStringLiteral("选择"),       QStringLiteral("订单号"),
                                     QStringLiteral("客户姓名"),   QStringLiteral("摄影师"),
                                     QStringLiteral("结单日期"),   QStringLiteral("成功/失败/总数"),
                                     QStringLiteral("样前修片师"), QStringLiteral("导片路径")};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return headers.value(section);
}

void BatchDeleteOrderModel::rowChanged(int row)
{
    emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
}
