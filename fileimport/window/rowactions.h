#pragma once

#include "fileimport/window/orderactionsdelegate.h"

#include <QPersistentModelIndex>
#include <QWidget>

#include <optional>

class FrozenTable;

/// The three buttons of an order's row where their column is not in sight: they stand at the
/// table's right edge, over the current row or the one under the pointer. Belongs to the table.
class RowActions : public QWidget
{
    Q_OBJECT

public:
    enum class Row { Current, Hovered };

    RowActions(FrozenTable *table, int actionsColumn, Row row);

signals:
    /// \a row is the row of the view.
    void actionClicked(int row, OrderActionsDelegate::Action action);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    void place();
    QModelIndex wantedRow() const;
    std::optional<OrderActionsDelegate::Action> actionAt(const QPoint &position) const;
    bool isColumnInSight() const;

    FrozenTable *table_;
    int column_;
    Row kind_;
    QPersistentModelIndex row_;
    /// Of the press that is going on: what is released over another order's buttons is no click.
    QPersistentModelIndex pressedRow_;
    std::optional<OrderActionsDelegate::Action> pressed_;
};
