#pragma once

#include <QStyledItemDelegate>

/// Draws the "import again" button of a failed file and tells when it is pressed.
class FileButtonDelegate : public QStyledItemDelegate
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
    void retryClicked(int row);
};
