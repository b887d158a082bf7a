#pragma once

#include "records/column.h"

#include <QAbstractTableModel>
#include <QVector>

#include <functional>
#include <type_traits>
#include <utility>

/// A table model with a record a row, which it owns, and columns that one table describes. A row is
/// the record's position in the list, which sorting in a view never changes. Columns read what is
/// shown of a row: the record itself, or something that a model makes of it for the moment.
template <class Record, class Shown = const Record &> class RecordTable : public QAbstractTableModel
{
public:
    /// What a cell is sorted by: numbers as numbers. Out of the way of roles that models add.
    static constexpr int SortRole = Qt::UserRole + 0x100;

    bool hasRow(int row) const { return row >= 0 && row < records_.size(); }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : records_.size();
    }

    int columnCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : columns_.count;
    }

    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
            section >= columns_.count)
            return {};
        return columns_.first[section].heading.toString();
    }

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override
    {
        if (!index.isValid() || !hasRow(index.row()) || index.column() >= columns_.count)
            return {};
        const records::Column<Row> &column = columns_.first[index.column()];
        const Shown row = shown(index.row());
        switch (role) {
        case Qt::DisplayRole:
            return column.value ? column.value(row) : QVariant();
        case SortRole:
            if (column.sortValue)
                return column.sortValue(row);
            return column.value ? column.value(row) : QVariant();
        case Qt::ForegroundRole:
            return column.textColour ? valid(column.textColour(row)) : QVariant();
        case Qt::TextAlignmentRole:
            return column.alignment != 0 ? column.alignment : QVariant();
        case Qt::ToolTipRole:
            return column.tip ? toolTip(column.tip(row)) : QVariant();
        default:
            return other(row, index.column(), role);
        }
    }

protected:
    using Row = std::decay_t<Shown>;

    RecordTable(records::Columns<Row> columns, QObject *parent)
        : QAbstractTableModel(parent), columns_(columns)
    {
    }

    /// What the columns read of a row; made of its record alone unless a model knows more of it.
    virtual Shown shown(int row) const
    {
        if constexpr (std::is_reference_v<Shown>)
            return records_.at(row);
        else
            return {records_.at(row)};
    }
    /// Roles that the columns have nothing of.
    virtual QVariant other(const Row &row, int column, int role) const
    {
        Q_UNUSED(row)
        Q_UNUSED(column)
        Q_UNUSED(role)
        return {};
    }

    void reset(QVector<Record> records)
    {
        beginResetModel();
        records_ = std::move(records);
        endResetModel();
    }

    /// Applies \a edit to one record and announces its row. Rows out of range are ignored.
    void change(int row, const std::function<void(Record &record)> &edit)
    {
        changeCells(row, 0, columns_.count - 1, edit);
    }
    /// The same where only some columns tell what changed.
    void changeCells(int row, int firstColumn, int lastColumn,
                     const std::function<void(Record &record)> &edit)
    {
        if (!hasRow(row))
            return;
        edit(records_[row]);
        emit dataChanged(index(row, firstColumn), index(row, lastColumn));
    }

    QVector<Record> records_;

private:
    static QVariant valid(const QColor &colour) { return colour.isValid() ? colour : QVariant(); }
    static QVariant toolTip(const QString &text) { return text.isEmpty() ? QVariant() : text; }

    records::Columns<Row> columns_;
};
