#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "batchdelete/window/batchdelete_delegates.h"

#include <QList>
#include <QWidget>

#include <functional>

class ArrangedColumns;
class BatchDeleteOrderModel;
class CustomCheckBoxNew;
class FrozenTable;
class LoadingOverlay;
class SortedRows;

/// The left half of the deletion window: the orders found, with ticks for those to be deleted. It
/// decides nothing. All rows in its signals are positions in the model's list, however the table is
/// sorted.
class BatchDelete_OrderListWidget : public QWidget
{
    Q_OBJECT

public:
    explicit BatchDelete_OrderListWidget(BatchDeleteOrderModel *model, QWidget *parent = nullptr);

    FrozenTable *table() const { return table_; }
    /// Arranges the columns as the user left them.
    void openColumns();
    /// Covers the table alone.
    LoadingOverlay *overlay() const { return overlay_; }
    /// Position of the selected order; -1 without one.
    int selectedRow() const;
    void selectRow(int row);
    /// Runs \a change, which replaces the orders, and brings selection, sorting and scroll
    /// position back.
    void keepPlaceWhile(const std::function<void()> &change);
    /// While a run goes on nothing can be ticked.
    void setCheckable(bool checkable);

signals:
    void orderSelectionChanged(const QList<BatchDeleteOrderInfo> &checkedOrders);
    void singleOrderClicked(const BatchDeleteOrderInfo &order);
    void viewClicked(int row, BatchDeleteProgressDelegate::Button button);
    void openFolderClicked(int row);
    void copyNumberClicked(int row);

public slots:
    void onTableSelectionChanged();
    /// A tick has changed.
    void onCheckBoxStateChanged(int state);
    /// The box in the header was pressed.
    void onSelectAllChanged(int state);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildTable();
    void addActions();
    void fitColumns();
    void placeSelectAll();

    BatchDeleteOrderModel *model_;
    FrozenTable *table_;
    SortedRows *rows_ = nullptr;
    ArrangedColumns *columns_ = nullptr;
    CustomCheckBoxNew *selectAll_;
    LoadingOverlay *overlay_;
};
