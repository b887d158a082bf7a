#pragma once

#include <QStyledItemDelegate>

/// Paints a check state as a box in the middle of its cell, crisp at every scale. Clicks are its
/// view's.
class TickDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};
