#pragma once

#include "widgets/tables/tables.h"

#include <QPointer>

/// A table whose first columns stay where they are while the others are scrolled sideways. A second
/// view lies over them, which paints alone: mouse and keyboard are this table's, so that clicks,
/// drags, tool tips and menus are the same everywhere. Where the frozen columns would take most of
/// the width, none is frozen.
class FrozenTable : public EmptyStateTable
{
    Q_OBJECT

public:
    explicit FrozenTable(QWidget *parent = nullptr);

    /// Heads the frozen columns; the table owns it. It is of the kind of the table's own header,
    /// which is set before; what the user does to its widths and places is done to that one, too.
    void setFrozenHeader(QHeaderView *header);
    /// The first \a count columns, as the user has arranged them. To be told again after the
    /// delegates or the look have changed.
    void freeze(int count);
    /// How many columns are frozen now, and how wide they are in pixels.
    int frozenColumns() const { return frozen_; }
    int frozenWidth() const { return widthOf(frozen_); }

    void setModel(QAbstractItemModel *model) override;
    void setSelectionModel(QItemSelectionModel *selectionModel) override;
    QModelIndex indexAt(const QPoint &position) const override;
    QRect visualRect(const QModelIndex &index) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    void shadeHoveredRow(QRgb colour) override;

signals:
    /// Another number of columns is frozen.
    void frozenChanged(int columns);

protected:
    void updateGeometries() override;
    bool viewportEvent(QEvent *event) override;

private:
    bool isFrozen(int column) const;
    int widthOf(int columns) const;
    int fitting() const;
    void mirror();
    void mirrorHeader(QHeaderView *copy) const;

    EmptyStateTable *over_; ///< paints the frozen columns
    QWidget *edge_;         ///< between them and the others
    QPointer<QHeaderView> header_;
    int wanted_ = 0;
    int frozen_ = 0;
    bool mirroring_ = false;
};
