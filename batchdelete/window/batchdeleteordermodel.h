#pragma once

#include "batchdelete/rules/batchdeleterecords.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QVector>

#include <functional>

/// The orders found, one a row, with the ticks of those to be deleted and what became of their
/// files. The only place where the window keeps its orders.
class BatchDeleteOrderModel : public QAbstractTableModel
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
        SortRole = Qt::UserRole,
        PercentRole, ///< of the files, how many have been dealt with; for any column
        SucceededRole,
        FailedRole,
        NoteRole, ///< why the order was skipped, or not finished
    };

    using QAbstractTableModel::QAbstractTableModel;

    /// Replaces the list. What became of the files of orders that are listed again is kept, and so
    /// are orders with files that the service has yet to be told of. \a unlisted are shown nowhere.
    void setOrders(QVector<BatchDeleteOrderInfo> orders,
                   const QVector<BatchDeleteOrderInfo> &unlisted = {});
    void clear();
    /// How many files are gone without the service knowing.
    int unreported() const;
    const QVector<BatchDeleteOrderInfo> &orders() const { return orders_; }
    /// Those and what cannot be listed: all that have a folder that may have to be kept.
    QVector<BatchDeleteOrderInfo> ordersWithFolders() const { return orders_ + unlisted_; }
    bool hasRow(int row) const { return row >= 0 && row < orders_.size(); }
    const BatchDeleteOrderInfo &order(int row) const { return orders_.at(row); }
    /// -1 for an order that is not listed.
    int rowOf(const OrderIdentity &order) const { return rows_.value(order, -1); }
    /// Rows out of range are ignored.
    void change(int row, const std::function<void(BatchDeleteOrderInfo &order)> &change);
    /// One file of the order changed.
    void setFile(int row, int index, const BatchDeleteFileInfo &file);

    QVector<BatchDeleteOrderInfo> checkedOrders() const;
    Qt::CheckState allChecked() const;
    void checkAll(bool checked);
    /// While a run goes on the ticks are what it was started with.
    void setCheckable(bool checkable);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

signals:
    /// One tick, as Qt::CheckState.
    void checkStateChanged(int state);

private:
    void rowChanged(int row);

    QVector<BatchDeleteOrderInfo> orders_;
    QVector<BatchDeleteOrderInfo> unlisted_;
    QHash<OrderIdentity, int> rows_;
    bool checkable_ = true;
};
