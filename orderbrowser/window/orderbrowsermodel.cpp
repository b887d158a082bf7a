#include "orderbrowser/window/orderbrowsermodel.h"

#include "look/colours.h"

OrderBrowserModel::OrderBrowserModel(QObject *parent) : QAbstractTableModel(parent)
{
    display_.today = QDate::currentDate();
}

void OrderBrowserModel::setOrders(const OrderListing &listing, const QVector<int> &rows)
{
    beginResetModel();
    listing_ = listing;
    rows_ = rows;
    findColumns();
    endResetModel();
}

void OrderBrowserModel::setColumns(const QStringList &keys)
{
    beginResetModel();
    keys_ = keys;
    findColumns();
    endResetModel();
}

void OrderBrowserModel::findColumns()
{
    columns_.clear();
    for (const QString &key : qAsConst(keys_)) {
        const int field = orderfields::positionOf(listing_.fields, key);
        if (field >= 0)
            columns_.append(field);
    }
}

void OrderBrowserModel::setSorting(const QVector<OrderArrangement::Sorting> &sorting)
{
    sorting_ = sorting;
    if (!columns_.isEmpty())
        emit headerDataChanged(Qt::Horizontal, 0, columns_.size() - 1);
}

void OrderBrowserModel::setDisplay(const fieldvalues::Display &display)
{
    display_ = display;
    if (!rows_.isEmpty() && !columns_.isEmpty())
        emit dataChanged(index(0, 0), index(rows_.size() - 1, columns_.size() - 1));
}

int OrderBrowserModel::columnOf(const QString &key) const
{
    return columns_.indexOf(orderfields::positionOf(listing_.fields, key));
}

int OrderBrowserModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rows_.size();
}

int OrderBrowserModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns_.size();
}

QVariant OrderBrowserModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const int field = columns_.at(index.column());
    const orderfields::Kind kind = listing_.fields.at(field).kind;
    switch (role) {
    case Qt::DisplayRole:
        return fieldvalues::shown(kind, value(index.row(), field), display_);
    case Qt::TextAlignmentRole:
        return int(orderfields::alignmentOf(kind));
    case Qt::ForegroundRole: {
        const QRgb colour = fieldvalues::colour(kind, value(index.row(), field), display_.today);
        return colour == 0 ? QVariant() : colours::toColor(colour);
    }
    default:
        return {};
    }
}

QVariant OrderBrowserModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columns_.size())
        return {};
    if (role == Qt::DisplayRole)
        return heading(section);
    return role == Qt::TextAlignmentRole
               ? QVariant(int(orderfields::alignmentOf(field(section).kind)))
               : QVariant();
}

/// With the direction of its sorting and, among several, its place.
QString OrderBrowserModel::heading(int column) const
{
    const orderfields::OrderField &field = this->field(column);
    for (int i = 0; i < sorting_.size(); ++i) {
        if (sorting_.at(i).key != field.key)
            continue;
        const QString arrow = sorting_.at(i).order == Qt::AscendingOrder ? QStringLiteral(" ▲")
                                                                         : QStringLiteral(" ▼");
        return field.heading + arrow + (sorting_.size() > 1 ? QString::number(i + 1) : QString());
    }
    return field.heading;
}
