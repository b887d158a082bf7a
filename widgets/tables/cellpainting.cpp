#include "widgets/tables/cellpainting.h"

#include "look/colours.h"
#include "widgets/theme/theme.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionViewItem>

namespace cellpainting {

void paintCell(QPainter *painter, const QStyleOptionViewItem &cell)
{
    const QStyle *style = cell.widget ? cell.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
}

void paintButton(QPainter *painter, const QRect &button, const QString &text, QRgb colour)
{
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(colours::toColor(colour));
    painter->drawRoundedRect(button, theme::radius(), theme::radius());
    painter->setPen(colours::toColor(colours::onFilled));
    painter->drawText(button, Qt::AlignCenter, text);
}

void paintTextButton(QPainter *painter, const QRect &button, const QString &text, bool enabled)
{
    painter->setPen(colours::toColor(enabled ? colours::accent : colours::muted));
    painter->drawText(button, Qt::AlignCenter, text);
}

bool isClickIn(const QEvent *event, const QRect &button)
{
    if (event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto *mouse = static_cast<const QMouseEvent *>(event);
    return mouse->button() == Qt::LeftButton && button.contains(mouse->pos());
}

} // namespace cellpainting
