#include "fileimport/window/importordertablemodel.h"

#include "fileimport/rules/importrules.h"

#include <algorithm>
#include <iterator>

namespace {

using Model = ImportOrderTableModel;
using Column = records::Column<ImportOrder>;
using records::from;

QVariant chosen(const ImportOrder &order)
{
    return order.everChosen ? QVariant(order.files.size()) : QVariant(QString());
}

QColor stateColour(const ImportOrder &order)
{
    return photoStateColour(order.photoState());
}

QString registrationTip(const ImportOrder &order)
{
    QStringList lines{
        order.unregistered
            ? QStringLiteral("文件已导入，尚未登记到服务。右键菜单“重新登记”可再次提交。")
            : QString(),
        importrules::unannouncedText(order.files)};
    lines.removeAll(QString());
    return lines.join(QLatin1Char('\n'));
}

constexpr Column columns[] = {
    Column(Model::NumberColumn, u"订单号", from<&ImportOrder::displayNumber>),
    Column(Model::ManColumn, u"男姓名", from<&ImportOrder::mname>),
    Column(Model::WomanColumn, u"女姓名", from<&ImportOrder::wname>),
    Column(Model::PhotographerColumn, u"摄影师", from<&ImportOrder::role1Name>),
    Column(Model::MakeUpColumn, u"化妆师", from<&ImportOrder::role2Name>),
    Column(Model::OriginalsColumn, u"已导原片", from<&ImportOrder::numberYuanpian>).centred(),
    Column(Model::RawColumn, u"已导原始档", from<&ImportOrder::numberYuanshidang>).centred(),
    Column(Model::RetouchedColumn, u"已导精修", from<&ImportOrder::numberJingxiu>).centred(),
    Column(Model::ChosenColumn, u"本次已选", chosen).centred(),
    Column(Model::StateColumn, u"照片状态", from<&photoStateText>)
        .centred()
        .coloured(stateColour)
        .withTip(registrationTip),
    Column(Model::ActionsColumn, u"操作"),
    Column(Model::PathColumn, u"导片路径", from<&ImportOrder::importPath>),
};

} // namespace

ImportOrderTableModel::ImportOrderTableModel(QObject *parent)
    : OrderTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}

QVector<ImportOrder> ImportOrderTableModel::unfinished() const
{
    QVector<ImportOrder> unfinished;
    std::copy_if(records_.cbegin(), records_.cend(), std::back_inserter(unfinished),
                 [](const ImportOrder &order) { return order.hasUnfinishedFile(); });
    return unfinished;
}

int ImportOrderTableModel::applyFile(int row, const ImportFile &file)
{
    bool applied = false;
    changeCells(row, StateColumn, StateColumn,
                [&](ImportOrder &order) { applied = order.applyResult(file); });
    return applied ? file.fileIndex : -1;
}

QVariant ImportOrderTableModel::other(const ImportOrder &order, int column, int role) const
{
    Q_UNUSED(column)
    return role == UnregisteredRole ? order.unregistered : QVariant();
}
