#pragma once

#include "orderbrowser/rules/orderviews.h"
#include "orderbrowser/window/orderbrowsermodel.h"
#include "widgets/tables/frozentable.h"

#include <QHash>
#include <QString>
#include <QVector>

class FilterHeader;
class QMenu;

/// The table of the order browser: the orders of its model under headings that can be dragged,
/// widened, sorted by and filtered under. Says what the user wants of them; who owns it decides.
class BrowserTable : public FrozenTable
{
    Q_OBJECT

public:
    explicit BrowserTable(QWidget *parent = nullptr);
    ~BrowserTable() override;

    OrderBrowserModel *orders() { return &model_; }
    const OrderBrowserModel *orders() const { return &model_; }

    /// Columns, widths and sorting as \a view says.
    void showView(const OrderView &view);
    void showFilters(const QHash<QString, QString> &filters);
    /// The selected orders that are among \a rows stay selected, and the current cell current.
    void showOrders(const OrderListing &listing, const QVector<int> &rows);

    /// Rows with a selected cell, from above.
    QVector<int> selectedRows() const;
    /// The fields of the columns, from the left.
    QStringList shownKeys() const;
    /// Null without a current row.
    const BrowsedOrder *currentOrder() const;
    /// What is selected as a table for other programs: tabulators between cells, a line for a row.
    QString selectedText() const;

signals:
    /// The user has changed columns or widths; the sorting is not told.
    void viewChanged(const OrderView &view);
    void sortingChanged(const QVector<OrderArrangement::Sorting> &sorting);
    void filterTyped(const QString &key, const QString &text);
    void selectionChangedTo(int rows);
    /// Another order, or none, is the current one, or there is another listing.
    void currentOrderChanged();
    /// The user wants to arrange the columns.
    void columnsWanted();
    /// The view is to be as it came.
    void restoreWanted();
    /// The context menu of a row opens.
    void menuWanted(const QPoint &position);

protected:
    void selectionChanged(const QItemSelection &selected,
                          const QItemSelection &deselected) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;

private:
    void connectHeader(FilterHeader *header);
    void applyColumns();
    void freezeColumns();
    void tellColumns();
    void focusFilter(int column);
    void showHeadingMenu(int column, const QPoint &position);
    void addFreezing(QMenu *menu);
    void hideColumn(int column);
    void showColumn(const QString &key);
    void addHiddenColumns(QMenu *menu);
    void fit(int column);

    OrderBrowserModel model_;
    FilterHeader *header_;
    FilterHeader *frozenHeader_;
    ElidedTextDelegate *paths_; ///< for columns of paths
    OrderView view_;
    QHash<QString, QString> filters_;
    bool applying_ = false; ///< what the header tells is not the user's doing
};
