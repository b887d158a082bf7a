#pragma once

#include "widgets/tables/filedroptable.h"

#include <QKeySequence>
#include <QString>
#include <QStringList>

#include <functional>

class ArrangedColumns;
class SortedRows;
class tforderlistmodel;

/// The table of orders of the photo import window. All rows in its signals are positions in the
/// model's list, however the table is sorted.
class tfhomeorders_OrderListWidget : public FileDropTable
{
    Q_OBJECT

public:
    explicit tfhomeorders_OrderListWidget(tforderlistmodel *model, QWidget *parent = nullptr);

    /// Arranges the columns as the user left them.
    void openColumns();
    /// Position of the selected order; -1 without one.
    int selectedOrder() const;
    /// False when the photo set is not listed.
    bool selectPhotoSet(const QString &orderPhotoId);
    /// Runs \a change, which replaces the orders, and brings selection and scroll position back.
    void keepPlaceWhile(const std::function<void()> &change);
    /// An action on the selected order, in the context menu and by its key.
    void addOrderAction(const QString &text, const QKeySequence &shortcut,
                        std::function<void(int row)> act);

signals:
    void orderSelectionChanged();
    void filesDroppedOnOrder(int row, const QStringList &paths);

private:
    void setColumnWidths();

    tforderlistmodel *model_;
    SortedRows *rows_ = nullptr;
    ArrangedColumns *columns_ = nullptr;
};
