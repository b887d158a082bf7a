#include "widgets/inputs/glyphbutton.h"

#include "look/colours.h"
#include "widgets/theme/theme.h"

#include <QPainter>
#include <QPainterPath>

GlyphButton::GlyphButton(Glyph glyph, QWidget *parent) : QAbstractButton(parent), glyph_(glyph)
{
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus);
    resize(GlyphButton::sizeHint());
}

void GlyphButton::setGlyph(Glyph glyph)
{
    glyph_ = glyph;
    update();
}

QSize GlyphButton::sizeHint() const
{
    const int side = theme::iconSize() + 2 * theme::focusWidth();
    return {side, side};
}

void GlyphButton::enterEvent(QEvent *event)
{
    QAbstractButton::enterEvent(event);
    update();
}

void GlyphButton::leaveEvent(QEvent *event)
{
    QAbstractButton::leaveEvent(event);
    update();
}

void GlyphButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double ring = theme::focusWidth();
    if (hasFocus()) {
        painter.setPen(QPen(colours::toColor(colours::accent), ring));
        painter.drawRoundedRect(QRectF(rect()).adjusted(ring / 2, ring / 2, -ring / 2, -ring / 2),
                                theme::radius(), theme::radius());
    }
    const QRectF box = QRectF(rect()).adjusted(ring, ring, -ring, -ring);
    const auto at = [&box](double x, double y) {
        return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
    };
    painter.setPen(QPen(colours::toColor(underMouse() ? colours::accent : colours::placeholder),
                        box.width() / 11, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (glyph_ == Glyph::Clear) {
        painter.drawLine(at(0.3, 0.3), at(0.7, 0.7));
        painter.drawLine(at(0.7, 0.3), at(0.3, 0.7));
        return;
    }
    QPainterPath eye(at(0.08, 0.5));
    eye.quadTo(at(0.5, 0.02), at(0.92, 0.5));
    eye.quadTo(at(0.5, 0.98), at(0.08, 0.5));
    painter.drawPath(eye);
    painter.drawEllipse(at(0.5, 0.5), box.width() * 0.13, box.width() * 0.13);
    if (glyph_ == Glyph::EyeCrossed)
        painter.drawLine(at(0.2, 0.85), at(0.8, 0.15));
}
