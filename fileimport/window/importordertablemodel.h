#pragma once

#include "fileimport/rules/importrecords.h"
#include "records/ordertable.h"

#include <QVector>

/// The import window's list of orders.
class ImportOrderTableModel : public OrderTable<ImportOrder>
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

    /// Whether the service was not told of the order's files, for any column.
    static constexpr int UnregisteredRole = Qt::UserRole;

    explicit ImportOrderTableModel(QObject *parent = nullptr);

    void setOrders(const QVector<ImportOrder> &orders) { reset(orders); }
    using OrderTable::change;
    /// Those with a file that is not imported.
    QVector<ImportOrder> unfinished() const;

    /// Writes a copy's result into the order's file; returns the file's position, -1 when the order
    /// no longer has it there.
    int applyFile(int row, const ImportFile &file);

protected:
    QVariant other(const ImportOrder &order, int column, int role) const override;
};
