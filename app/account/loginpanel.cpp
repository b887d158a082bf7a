#include "app/account/loginpanel.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/theme/theme.h"

#include <QLinearGradient>
#include <QPainter>
#include <QWidget>

namespace {

constexpr int cornerPx = 12;

} // namespace

void paintLoginPanel(QPainter *painter, const QWidget *window)
{
    painter->setRenderHint(QPainter::Antialiasing);
    const qreal border = theme::hairline();
    const QRectF panel =
        QRectF(window->rect()).marginsRemoved(QMarginsF(border, border, border, border) / 2);
    QLinearGradient sky(panel.topLeft(), panel.bottomLeft());
    sky.setColorAt(0.0, colours::toColor(colours::accentTint));
    sky.setColorAt(0.4, colours::toColor(colours::surface));
    painter->setPen(QPen(colours::toColor(colours::outline), border));
    painter->setBrush(sky);
    painter->drawRoundedRect(panel, K::scaledPx(cornerPx), K::scaledPx(cornerPx));
}
