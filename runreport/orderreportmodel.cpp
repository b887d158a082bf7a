#include "runreport/orderreportmodel.h"

#include "look/colours.h"

namespace {

using Model = OrderReportModel;
using Column = records::Column<OrderReport>;
using records::from;

QVariant failedOf(const OrderReport &order)
{
    return order.failures.size();
}

QColor red(int count)
{
    return count > 0 ? colours::toColor(colours::failure) : QColor();
}

QColor colourOfFailed(const OrderReport &order)
{
    return red(order.failures.size());
}

QColor colourOfUnregistered(const OrderReport &order)
{
    return red(order.unregistered);
}

constexpr Column columns[] = {
    Column(Model::NumberColumn, u"订单号", from<&OrderReport::number>),
    Column(Model::NameColumn, u"客户", from<&OrderReport::name>),
    Column(Model::ChosenColumn, u"选择", from<&OrderReport::chosen>).centred(),
    Column(Model::CopiedColumn, u"已拷贝", from<&OrderReport::copied>).centred(),
    Column(Model::VerifiedColumn, u"已核对", from<&OrderReport::verified>).centred(),
    Column(Model::ProofColumn, u"核对方式", from<&OrderReport::proofText>),
    Column(Model::RegisteredColumn, u"已登记", from<&OrderReport::registered>).centred(),
    Column(Model::UnregisteredColumn, u"未登记", from<&OrderReport::unregistered>)
        .centred()
        .coloured(colourOfUnregistered),
    Column(Model::UnannouncedColumn, u"不登记的类型", from<&OrderReport::unannounced>).centred(),
    Column(Model::FailedColumn, u"失败", failedOf).centred().coloured(colourOfFailed),
};

} // namespace

OrderReportModel::OrderReportModel(QObject *parent)
    : RecordTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}
