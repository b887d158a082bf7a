#pragma once

#include <QRect>
#include <QStyledItemDelegate>

/// Draws the three buttons of an order's row and tells which one is pressed.
class OrderActionsDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    enum Action { SelectFiles, ClearFiles, OpenFolder, ActionCount };

    using QStyledItemDelegate::QStyledItemDelegate;

    /// Text of the button; the same words name the action elsewhere.
    static QString text(Action action);
    /// Where the button lies in a cell.
    static QRect buttonRect(const QRect &cell, Action action);
    /// The one under \a mouse looks so; with the painter's font.
    static void paintButtons(QPainter *painter, const QRect &cell, const QPoint &mouse);
    /// Width of a cell whose buttons hold their texts in \a font.
    static int cellWidth(const QFont &font);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

signals:
    /// \a row is the row of the view.
    void actionClicked(int row, OrderActionsDelegate::Action action);
};
