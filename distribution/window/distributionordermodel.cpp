#include "distribution/window/distributionordermodel.h"

namespace {

using Model = DistributionOrderModel;
using Order = OrderData;
using Column = records::Column<TickedOrder>;

template <auto part> QVariant from(const TickedOrder &row)
{
    return records::from<part, QVariant>(row.order);
}

QVariant number(const TickedOrder &row)
{
    return row.order.serviceTimes.isEmpty()
               ? row.order.orderPayForKey
               : row.order.orderPayForKey + QLatin1Char('-') + row.order.serviceTimes;
}

QVariant photoCount(const TickedOrder &row)
{
    return row.order.images.size();
}

QVariant photoCounts(const TickedOrder &row)
{
    const QString &retouched = row.order.numberJingxiu;
    return QStringLiteral("%1/%2").arg(QString::number(row.order.images.size()),
                                       retouched.isEmpty() ? QStringLiteral("0") : retouched);
}

QVariant selectionDate(const TickedOrder &row)
{
    return row.order.selectPhotoTime.section(QLatin1Char(' '), 0, 0);
}

QVariant amount(const TickedOrder &row)
{
    return row.order.orderPrice.toDouble();
}

QVariant tick(const TickedOrder &row)
{
    return row.ticked;
}

constexpr Column columns[] = {
    Column(Model::TickColumn, u"").sorted(tick),
    Column(Model::NumberColumn, u"订单号", number),
    Column(Model::ManColumn, u"男士姓名", from<&Order::mname>),
    Column(Model::WomanColumn, u"女士姓名", from<&Order::wname>),
    Column(Model::PhotographerColumn, u"摄影师", from<&Order::role1>),
    Column(Model::PackageColumn, u"套系", from<&Order::comboName>),
    Column(Model::ShotDateColumn, u"拍照日期", from<&Order::shotDate>),
    Column(Model::RetouchedColumn, u"初修数/精修数", photoCounts).sorted(photoCount),
    Column(Model::MakeUpColumn, u"化妆师", from<&Order::role2>),
    Column(Model::ConsultantColumn, u"选片师", from<&Order::selectPhotoName>),
    Column(Model::SelectionDateColumn, u"选片日期", selectionDate),
    Column(Model::SelectedAtColumn, u"选片完成时间", from<&Order::selectPhotoTime>),
    Column(Model::ManPhoneColumn, u"男士电话", from<&Order::mphone>),
    Column(Model::WomanPhoneColumn, u"女士电话", from<&Order::wphone>),
    Column(Model::PriceColumn, u"订单金额", from<&Order::orderPrice>).sorted(amount),
};

} // namespace

DistributionOrderModel::DistributionOrderModel(QObject *parent)
    : OrderTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}

void DistributionOrderModel::setOrders(const QVector<OrderData> &orders)
{
    ticked_.clear();
    reset(orders);
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
    for (int row = 0; row < records_.size(); ++row)
        setTicked(row, ticked);
}

TickedOrder DistributionOrderModel::shown(int row) const
{
    return {order(row), isTicked(row)};
}

QVariant DistributionOrderModel::other(const TickedOrder &row, int column, int role) const
{
    if (column != TickColumn)
        return {};
    if (role == Qt::CheckStateRole)
        return row.ticked ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::AccessibleTextRole)
        return row.ticked ? QStringLiteral("已勾选") : QStringLiteral("未勾选");
    return {};
}
