#include "distribution/window/distributionordermodel.h"

#include <QStringList>

namespace {

struct ColumnInfo
{
    QString header;
    QString OrderData::*member; ///< null: not one member's text
};

const ColumnInfo columns[] = {
    {QString(), nullptr},
    {QStringLiteral("订单号"), nullptr},
    {QStringLiteral("男士姓名"), &OrderData::mname},
    {QStringLiteral("女士姓名"), &OrderData::wname},
    {QStringLiteral("摄影师"), &OrderData::role1},
    {QStringLiteral("套系"), &OrderData::comboName},
    {QStringLiteral("拍照日期"), &OrderData::shotDate},
    {QStringLiteral("初修数/精修数"), nullptr},
    {QStringLiteral("化妆师"), &OrderData::role2},
    {QStringLiteral("选片师"), &OrderData::selectPhotoName},
    {QStringLiteral("选片日期"), nullptr},
    {QStringLiteral("选片完成时间"), &OrderData::selectPhotoTime},
    {QStringLiteral("男士电话"), &OrderData::mphone},
    {QStringLiteral("女士电话"), &OrderData::wphone},
    {QStringLiteral("订单金额"), &OrderData::orderPrice},
};

} // namespace

DistributionOrderModel::DistributionOrderModel(QObject *parent) : QAbstractTableModel(parent)
{
}

void DistributionOrderModel::setOrders(const QVector<OrderData> &orders)
{
    beginResetModel();
    orders_ = orders;
    ticked_.clear();
    endResetModel();
}

bool DistributionOrderModel::isTicked(int row) const
{
    return ticked_.contains(row);
}

void DistributionOrderModel::setTicked(int row, bool ticked)
{
    if (!hasRow(row) || isTicked(row) == ticked)
        return;
    if (ticked)
        ticked_.insert(row);
    else
        ticked_.remove(row);
    emit dataChanged(index(row, TickColumn), index(row, TickColumn),
                     {Qt::CheckStateRole, SortRole});
    emit tickedChanged(row, ticked);
}

void DistributionOrderModel::setAllTicked(bool ticked)
{
    for (int row = 0; row < orders_.size(); ++row)
        setTicked(row, ticked);
}

int DistributionOrderModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : orders_.size();
}

int DistributionOrderModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QString DistributionOrderModel::text(const OrderData &order, int column) const
{
    switch (column) {
    case TickColumn:
        return {};
    case NumberColumn:
        return order.serviceTimes.isEmpty()
                   ? order.orderPayForKey
                   : order.orderPayForKey + QLatin1Char('-') + order.serviceTimes;
    case RetouchedColumn:
        return QStringLiteral("%1/%2").arg(QString::number(order.images.size()),
                                           order.numberJingxiu.isEmpty() ? QStringLiteral("0")
                                                                         : order.numberJingxiu);
    case SelectionDateColumn:
        return order.selectPhotoTime.section(QLatin1Char(' '), 0, 0);
    default:
        return order.*columns[column].member;
    }
}

QVariant DistributionOrderModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !hasRow(index.row()))
        return {};
    const OrderData &order = orders_.at(index.row());
    const int column = index.column();
    if (role == Qt::DisplayRole)
        return text(order, column);
    if (role == Qt::CheckStateRole && column == TickColumn)
        return isTicked(index.row()) ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::AccessibleTextRole && column == TickColumn)
        return isTicked(index.row()) ? QStringLiteral("已勾选") : QStringLiteral("未勾选");
    if (role != SortRole)
        return {};
    if (column == TickColumn)
        return isTicked(index.row());
    if (column == PriceColumn)
        return order.orderPrice.toDouble();
    if (column == RetouchedColumn)
        return order.images.size();
    return text(order, column);
}

QVariant DistributionOrderModel::headerData(int section, Qt::Orientation orientation,
                                            int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount ||
        role != Qt::DisplayRole)
        return {};
    return columns[section].header;
}
