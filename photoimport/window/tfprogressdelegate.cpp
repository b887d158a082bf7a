#include "photoimport/window/tfprogressdelegate.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "widgets/tables/cellpainting.h"

#include <QPainter>

namespace {

constexpr int barHeightPx = 16;
constexpr int besidePx = 6;
constexpr int radiusPx = 4;

} // namespace

void tfprogressdelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.text.clear(); // it stands on the bar
    cellpainting::paintCell(painter, cell);
    const double share = index.data(tforderlistmodel::ProgressRole).toDouble();
    if (share < 0)
        return;
    QRect bar = option.rect.adjusted(K::scaledPx(besidePx), 0, -K::scaledPx(besidePx), 0);
    bar.setHeight(K::scaledPx(barHeightPx));
    bar.moveCenter(option.rect.center());
    const int radius = K::scaledPx(radiusPx);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(colours::toColor(colours::divider));
    painter->drawRoundedRect(bar, radius, radius);
    QRect done = bar;
    done.setWidth(int(bar.width() * share));
    painter->setBrush(index.data(Qt::ForegroundRole).value<QColor>());
    painter->setClipRect(done);
    painter->drawRoundedRect(bar, radius, radius);
    painter->setClipping(false);
    painter->setPen(colours::toColor(share < 0.5 ? colours::heading : colours::onFilled));
    painter->drawText(bar, Qt::AlignCenter, index.data().toString());
    painter->restore();
}
