#include "fileimport/window/importordertablemodel.h"

#include "look/colours.h"

#include <QColor>

#include <algorithm>
#include <iterator>

namespace {

QVariant cell(const ImportOrder &order, int column)
{
    switch (column) {
    case ImportOrderTableModel::NumberColumn:
        return order.displayNumber();
    case ImportOrderTableModel::ManColumn:
        return order.mname;
    case ImportOrderTableModel::WomanColumn:
        return order.wname;
    case ImportOrderTableModel::PhotographerColumn:
        return order.role1Name;
    case ImportOrderTableModel::MakeUpColumn:
        return order.role2Name;
    case ImportOrderTableModel::OriginalsColumn:
        return order.numberYuanpian;
    case ImportOrderTableModel::RawColumn:
        return order.numberYuanshidang;
    case ImportOrderTableModel::RetouchedColumn:
        return order.numberJingxiu;
    case ImportOrderTableModel::ChosenColumn:
        return order.everChosen ? QVariant(order.files.size()) : QVariant(QString());
    case ImportOrderTableModel::StateColumn:
        return photoStateText(order);
    case ImportOrderTableModel::PathColumn:
        return order.importPath;
    default:
        return {};
    }
}

bool isCentred(int column)
{
    return column >= ImportOrderTableModel::OriginalsColumn &&
           column <= ImportOrderTableModel::StateColumn;
}

} // namespace

ImportOrderTableModel::ImportOrderTableModel(QObject *parent) : QAbstractTableModel(parent)
{
}

void ImportOrderTableModel::setOrders(const QVector<ImportOrder> &orders)
{
    beginResetModel();
    orders_ = orders;
    rows_.clear();
    for (int row = 0; row < orders_.size(); ++row)
        rows_.insert(orders_.at(row).identity(), row);
    endResetModel();
}

QVector<ImportOrder> ImportOrderTableModel::unfinished() const
{
    QVector<ImportOrder> unfinished;
    std::copy_if(orders_.cbegin(), orders_.cend(), std::back_inserter(unfinished),
                 [](const ImportOrder &order) { return order.hasUnfinishedFile(); });
    return unfinished;
}

void ImportOrderTableModel::change(int row, const std::function<void(ImportOrder &)> &edit)
{
    if (!hasRow(row))
        return;
    edit(orders_[row]);
    emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

int ImportOrderTableModel::applyFile(int row, const ImportFile &file)
{
    if (!hasRow(row))
        return -1;
    if (!orders_[row].applyResult(file))
        return -1;
    emit dataChanged(index(row, StateColumn), index(row, StateColumn));
    return file.fileIndex;
}

int ImportOrderTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : orders_.size();
}

int ImportOrderTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ImportOrderTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !hasRow(index.row()))
        return {};
    const ImportOrder &order = orders_.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case SortRole:
        return cell(order, index.column());
    case Qt::ForegroundRole:
        if (index.column() == StateColumn)
            return QColor(photoStateColour(order.photoState()));
        return {};
    case Qt::TextAlignmentRole:
        return int((isCentred(index.column()) ? Qt::AlignHCenter : Qt::AlignLeft) |
                   Qt::AlignVCenter);
    case Qt::ToolTipRole:
        if (index.column() == StateColumn && order.unregistered)
            return QStringLiteral("文件已导入，尚未登记到服务。右键菜单“重新登记”可再次提交。");
        return {};
    default:
        return {};
    }
}

QVariant ImportOrderTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList headers = {
        QStringLiteral("订单号"),     QStringLiteral("男姓名"),   QStringLiteral("女姓名"),
        QStringLiteral("摄影师"),     QStringLiteral("化妆师"),   QStringLiteral("已导原片"),
        QStringLiteral("已导原始档"), QStringLiteral("已导精修"), QStringLiteral("本次已选"),
        QStringLiteral("照片状态"),   QStringLiteral("操作"),     QStringLiteral("导片路径")};
    return headers.value(section);
}
