#pragma once

#include "fileimport/rules/importrecords.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QString>
#include <QVector>

#include <functional>

/// The import window's list of orders; it owns the records. A row here is the order's position in
/// the list, which sorting in a view never changes.
class ImportOrderTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column {
        NumberColumn,
        ManColumn,
        WomanColumn,
        PhotographerColumn,
        MakeUpColumn,
        OriginalsColumn,
        RawColumn,
        RetouchedColumn,
        ChosenColumn,
        StateColumn,
        ActionsColumn,
        PathColumn,
        ColumnCount
    };
    enum Role {
        SortRole = Qt::UserRole, ///< numbers as numbers
    };

    explicit ImportOrderTableModel(QObject *parent = nullptr);

    void setOrders(const QVector<ImportOrder> &orders);
    const QVector<ImportOrder> &orders() const { return orders_; }
    bool hasRow(int row) const { return row >= 0 && row < orders_.size(); }
    const ImportOrder &order(int row) const { return orders_.at(row); }
    /// Position of the order; -1 when it is not listed.
    int rowOf(const OrderIdentity &order) const { return rows_.value(order, -1); }

    /// Those with a file that is not imported.
    QVector<ImportOrder> unfinished() const;

    /// Applies \a edit to one order and announces its row. Rows out of range are ignored.
    void change(int row, const std::function<void(ImportOrder &)> &edit);
    /// Writes a copy's result into the order's file; returns the file's position, -1 when the order
    /// no longer has it there.
    int applyFile(int row, const ImportFile &file);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QVector<ImportOrder> orders_;
    QHash<OrderIdentity, int> rows_;
};
