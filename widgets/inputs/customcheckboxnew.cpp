#include "widgets/inputs/customcheckboxnew.h"

#include "look/colours.h"
#include "widgets/theme/theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>

CustomCheckBoxNew::CustomCheckBoxNew(QWidget *parent) : CustomCheckBoxNew(QString(), parent)
{
}

CustomCheckBoxNew::CustomCheckBoxNew(const QString &text, QWidget *parent) : QCheckBox(text, parent)
{
    QFont textFont = font();
    textFont.setPixelSize(theme::textSize());
    setFont(textFont);
}

QSize CustomCheckBoxNew::sizeHint() const
{
    // The focus ring lies around the box.
    const int box = theme::checkBoxSize() + 2 * theme::focusWidth();
    if (text().isEmpty())
        return {box, box};
    const QSize label = fontMetrics().size(Qt::TextShowMnemonic, text());
    return {box + theme::spacing() + label.width(), qMax(box, label.height())};
}

QSize CustomCheckBoxNew::minimumSizeHint() const
{
    return sizeHint();
}

bool CustomCheckBoxNew::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void CustomCheckBoxNew::enterEvent(QEvent *event)
{
    QCheckBox::enterEvent(event);
    update();
}

void CustomCheckBoxNew::leaveEvent(QEvent *event)
{
    QCheckBox::leaveEvent(event);
    update();
}

void CustomCheckBoxNew::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int size = theme::checkBoxSize();
    const int ring = theme::focusWidth();
    const QRect outer = QStyle::visualRect(
        layoutDirection(), rect(),
        QRect(0, (height() - size) / 2 - ring, size + 2 * ring, size + 2 * ring));
    paintCheckBox(&painter, QRectF(outer).adjusted(ring, ring, -ring, -ring),
                  {checkState(), isEnabled(), hasFocus(), underMouse()});

    if (text().isEmpty())
        return;
    const QRect label = QStyle::visualRect(
        layoutDirection(), rect(), rect().adjusted(outer.width() + theme::spacing(), 0, 0, 0));
    painter.setPen(colours::toColor(isEnabled() ? colours::heading : colours::disabledText));
    painter.drawText(label, int(Qt::AlignVCenter | Qt::AlignLeading) | Qt::TextShowMnemonic,
                     text());
}

void paintCheckBox(QPainter *painter, const QRectF &box, const CheckBoxLook &look)
{
    const bool filled = look.state != Qt::Unchecked;
    const double line = theme::hairline();
    const double corner = theme::radius() * 0.75;
    QRgb frame = filled || look.focused || look.hovered ? colours::accent : colours::outlineHover;
    QRgb fill = filled ? (look.hovered ? colours::accentHover : colours::accent) : colours::surface;
    if (!look.enabled) {
        frame = colours::outline;
        fill = filled ? colours::disabledText : colours::disabledSurface;
    }
    if (look.focused) {
        const double ring = theme::focusWidth();
        painter->setPen(QPen(colours::toColor(colours::focusRing), ring));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(box.adjusted(-ring / 2, -ring / 2, ring / 2, ring / 2),
                                 corner + ring / 2, corner + ring / 2);
    }
    painter->setPen(QPen(colours::toColor(frame), line));
    painter->setBrush(colours::toColor(fill));
    painter->drawRoundedRect(box.adjusted(line / 2, line / 2, -line / 2, -line / 2), corner,
                             corner);
    if (!filled)
        return;
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(colours::toColor(colours::onFilled), box.width() / 8, Qt::SolidLine,
                         Qt::RoundCap, Qt::RoundJoin));
    const auto at = [&box](double x, double y) {
        return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
    };
    if (look.state == Qt::PartiallyChecked) {
        painter->drawLine(at(0.28, 0.5), at(0.72, 0.5));
        return;
    }
    QPainterPath tick(at(0.25, 0.52));
    tick.lineTo(at(0.43, 0.7));
    tick.lineTo(at(0.76, 0.32));
    painter->drawPath(tick);
}
