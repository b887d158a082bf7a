#pragma once

#include "widgets/tables/tables.h"

/// Draws an order's photo state and, beside that of an order of which the service was not told, the
/// link that registers it again.
class PhotoStateDelegate : public ElidedTextDelegate
{
    Q_OBJECT

public:
    explicit PhotoStateDelegate(QObject *parent = nullptr);

    /// Text of the link; the same words name the action elsewhere.
    static QString linkText();
    /// Where the link lies in a cell.
    static QRect linkRect(const QRect &cell, const QFont &font);
    /// Width of a cell that holds \a stateText in \a font and the link.
    static int cellWidth(const QString &stateText, const QFont &font);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

signals:
    /// \a row is the row of the view.
    void registerAgainClicked(int row);
};
