#pragma once

#include <QStyledItemDelegate>

/// Paints a check state as a box, crisp at every scale: before the text, or in the middle of a cell
/// without one. A click anywhere in a cell that the user may check changes it.
class TickDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// While they are not to be changed; repaint the view afterwards.
    void setLocked(bool locked) { locked_ = locked; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

private:
    bool locked_ = false;
};
