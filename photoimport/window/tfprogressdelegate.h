#pragma once

#include <QStyledItemDelegate>

/// Draws an order's progress as a bar with the percentage in it; nothing for an order without
/// files.
class tfprogressdelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};
