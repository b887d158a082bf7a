#pragma once

#include "widgets/theme/plaintext.h"

#include <QKeySequence>
#include <QStyledItemDelegate>
#include <QTableView>

#include <functional>

/// Gives \a table the program's look and habits: whole rows are selected, rows alternate, long
/// texts are elided with a tool tip, Tab leaves the table, the user sorts only where the caller
/// turns it on. Call it once, before delegates for single columns are set.
void prepareTable(QTableView *table);

/// Lets the header's texts take two lines, so that columns of small numbers can be narrow.
void wrapHeaders(QTableView *table);

/// An action among \a view's own: in its context menu, and by its key while the view has the focus.
QAction *addTableAction(QAbstractItemView *view, const QString &text, const QKeySequence &shortcut,
                        std::function<void()> act);

/// The context menu of the view's actions, at \a position of its viewport.
void popUpActions(QAbstractItemView *view, const QPoint &position);

/// Text with "…" where it does not fit: at the end, or in the middle for paths. The whole text is
/// then the tool tip. Colours given by the model stay on selected rows.
class ElidedTextDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit ElidedTextDelegate(Qt::TextElideMode mode = Qt::ElideRight, QObject *parent = nullptr);

    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    Qt::TextElideMode mode_;
};

/// A table that says in its middle why it is empty, and may shade the row under the pointer.
class EmptyStateTable : public PlainTips<QTableView>
{
    Q_OBJECT

public:
    explicit EmptyStateTable(QWidget *parent = nullptr);

    void setEmptyText(const QString &text);
    const QString &emptyText() const { return emptyText_; }
    /// Shades the whole row under the pointer; the framework would do so with its cell alone.
    virtual void shadeHoveredRow(QRgb colour);
    /// Where the pointer is to be for a row to be shaded; the table's own viewport unless told.
    void setPointerArea(const QWidget *area) { pointerArea_ = area; }

protected:
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QVector<int> &roles = {}) override;
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    QString emptyText_;
    QRgb hoverColour_ = 0; ///< transparent: nothing is shaded
    const QWidget *pointerArea_;
};
