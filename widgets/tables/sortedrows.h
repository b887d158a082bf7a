#pragma once

#include "app/context/orderidentity.h"

#include <QKeySequence>
#include <QObject>
#include <QString>

#include <functional>

class QAbstractItemModel;
class QAction;
class QPoint;
class QSortFilterProxyModel;
class QTableView;

/// A table that the user sorts and whose rows are known by their positions in the model, however
/// the table is sorted. Nothing moves by itself: rows must not jump about under the mouse while
/// their contents change. Belongs to the table.
class SortedRows : public QObject
{
    Q_OBJECT

public:
    /// How orders are recognised after the model was filled anew: \a identityOf a position, empty
    /// when there is no such row; \a positionOf an order, -1 when it is gone.
    struct Ids
    {
        std::function<OrderIdentity(int position)> identityOf;
        std::function<int(const OrderIdentity &order)> positionOf;
    };

    /// Shows \a model, sorted by \a sortRole, in \a table, which prepareTable() has prepared.
    SortedRows(QTableView *table, QAbstractItemModel *model, int sortRole);

    int count() const;
    /// Position of a row of the view; -1 for none.
    int position(int viewRow) const;
    /// Position of the current row; -1 without one.
    int current() const;

    /// Makes the row at \a position the current one, in sight; the focus stays where it is.
    void makeCurrent(int position);

    /// Sorts as the header says. For when the model has been filled.
    void sortAgain();
    /// Runs \a change, which fills the model anew, and brings sorting, current row and scroll
    /// position back. Tells currentChanged() when the row is gone.
    void keepPlaceWhile(const std::function<void()> &change, const Ids &ids);

    /// Something that can be done with the current row, by its key and in the context menu.
    QAction *addAction(const QString &text, const QKeySequence &shortcut,
                       std::function<void(int position)> act);

signals:
    /// Another row, or none, is the current one.
    void currentChanged();
    /// The context menu is about to show the table's actions.
    void menuOpens(int position);

private:
    void showMenu(const QPoint &position);

    QTableView *table_;
    QAbstractItemModel *model_;
    QSortFilterProxyModel *proxy_;
};
