#pragma once

#include <QStyledItemDelegate>

/// Draws an order number as a link and tells when it is clicked.
class OrderNumberButtonDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

signals:
    /// \a row is the row of the view.
    void orderNumberClicked(int row, const QString &number);
};
