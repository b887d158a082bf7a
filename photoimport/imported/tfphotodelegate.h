#pragma once

#include <QStyledItemDelegate>

/// Draws a photo of the panel: thumbnail, name, size, a mark for each of its jobs and for its
/// registration, and why something failed; as a card of a grid or as a row of a list.
class tfphotodelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void setGrid(bool grid) { grid_ = grid; }
    bool isGrid() const { return grid_; }

    /// Of one card, or the height of one row.
    static QSize cellSize(bool grid);
    /// Side of the square that holds a thumbnail, in pixels of the screen.
    static int thumbnailSide();

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    bool grid_ = true;
};
