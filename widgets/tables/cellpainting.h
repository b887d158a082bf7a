#pragma once

#include <QRgb>

class QEvent;
class QPainter;
class QRect;
class QString;
class QStyleOptionViewItem;

/// What delegates that draw buttons into the cells of a table have in common.
namespace cellpainting {

/// The cell as the style draws it: background, selection, and text where \a cell has one. \a cell
/// is what the delegate's initStyleOption() has filled.
void paintCell(QPainter *painter, const QStyleOptionViewItem &cell);

/// A filled button with its text. Leaves pen, brush and rendering hints changed.
void paintButton(QPainter *painter, const QRect &button, const QString &text, QRgb colour);

/// A text that can be pressed; muted while it is not \a enabled. Leaves the pen changed.
void paintTextButton(QPainter *painter, const QRect &button, const QString &text, bool enabled);

/// Whether \a event is the left mouse button let go inside \a button.
bool isClickIn(const QEvent *event, const QRect &button);

} // namespace cellpainting
