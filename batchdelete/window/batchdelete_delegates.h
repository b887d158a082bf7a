#pragma once

#include "widgets/tables/tables.h"

/// A tick in the middle of its cell. A click anywhere in the cell changes it, and so does the space
/// bar on the row.
class BatchDeleteCheckDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;
};

/// How far an order is: counts, a bar below them, why it was skipped, and the buttons that list its
/// files.
class BatchDeleteProgressDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    enum Button { ViewSucceeded, ViewFailed, ButtonCount };

    using QStyledItemDelegate::QStyledItemDelegate;

    static QString text(Button button);
    /// Where the button lies in a cell.
    static QRect buttonRect(const QRect &cell, Button button);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

signals:
    /// \a row is the row of the view.
    void buttonClicked(int row, BatchDeleteProgressDelegate::Button button);
};

/// A file's state in its colour, the reason behind it, and the button for what can be done.
class BatchDeleteStateDelegate : public ElidedTextDelegate
{
    Q_OBJECT

public:
    explicit BatchDeleteStateDelegate(QObject *parent = nullptr);

    /// Where the button lies in a cell.
    static QRect buttonRect(const QRect &cell);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

signals:
    /// \a row is the row of the view.
    void retryClicked(int row);
};
