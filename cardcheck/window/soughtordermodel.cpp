#include "cardcheck/window/soughtordermodel.h"

namespace {

using soughtorders::Order;
using Column = records::Column<Order>;
using Model = SoughtOrderModel;
using records::from;

QVariant folder(const Order &order)
{
    return order.folder.isEmpty() ? QStringLiteral("没有导片路径") : order.folder;
}

constexpr Column columns[] = {
    Column(Model::NumberColumn, u"订单号", from<&Order::displayNumber>),
    Column(Model::CustomersColumn, u"客人", from<&Order::customers>),
    Column(Model::DateColumn, u"拍照日期", from<&Order::shotDateText>),
    Column(Model::FolderColumn, u"导片路径", folder),
};

} // namespace

SoughtOrderModel::SoughtOrderModel(QObject *parent)
    : OrderTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}
