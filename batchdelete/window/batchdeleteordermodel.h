#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "records/ordertable.h"

#include <QVector>

/// The orders found, one a row, with the ticks of those to be deleted and what became of their
/// files. The only place where the window keeps its orders.
class BatchDeleteOrderModel : public OrderTable<BatchDeleteOrderInfo>
{
    Q_OBJECT

public:
    enum Column {
        CheckColumn,
        NumberColumn,
        CustomerColumn,
        PhotographerColumn,
        CompletionColumn,
        ProgressColumn,
        RetoucherColumn,
        PathColumn,
        ColumnCount
    };
    enum Role {
        PercentRole = Qt::UserRole, ///< of the files, how many have been dealt with; for any column
        SucceededRole,
        FailedRole,
        NoteRole, ///< why the order was skipped, or not finished
    };

    explicit BatchDeleteOrderModel(QObject *parent = nullptr);

    /// Replaces the list. What became of the files of orders that are listed again is kept, and so
    /// are orders with files that the service has yet to be told of. \a unlisted are shown nowhere.
    void setOrders(QVector<BatchDeleteOrderInfo> orders,
                   const QVector<BatchDeleteOrderInfo> &unlisted = {});
    void clear();
    /// How many files are gone without the service knowing.
    int unreported() const;
    /// Those and what cannot be listed: all that have a folder that may have to be kept.
    QVector<BatchDeleteOrderInfo> ordersWithFolders() const { return records_ + unlisted_; }
    using OrderTable::change;
    /// One file of the order changed.
    void setFile(int row, int index, const BatchDeleteFileInfo &file);

    QVector<BatchDeleteOrderInfo> checkedOrders() const;
    Qt::CheckState allChecked() const;
    void checkAll(bool checked);
    /// Takes the tick away, in a run as well: there is nothing to be done with the order any more.
    void uncheck(int row);
    /// While a run goes on the ticks are what it was started with.
    void setCheckable(bool checkable);

    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

signals:
    /// One tick, as Qt::CheckState.
    void checkStateChanged(int state);

private:
    QVariant other(const BatchDeleteOrderInfo &order, int column, int role) const override;

    QVector<BatchDeleteOrderInfo> unlisted_;
    bool checkable_ = true;
};
