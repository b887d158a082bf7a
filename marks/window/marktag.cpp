#include "marks/window/marktag.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/tables/cellpainting.h"
#include "widgets/theme/sizes.h"

#include <QPainter>
#include <QPainterPath>

using marks::Mark;

namespace marktag {

namespace {

constexpr int heightPx = 20;
constexpr int shapePx = 10;
constexpr int besidesPx = 5;
constexpr double tintAlpha = 0.12;

QPainterPath triangle(const QRectF &box)
{
    QPainterPath path;
    path.moveTo(box.center().x(), box.top());
    path.lineTo(box.bottomRight());
    path.lineTo(box.bottomLeft());
    path.closeSubpath();
    return path;
}

QPainterPath diamond(const QRectF &box)
{
    QPainterPath path;
    path.moveTo(box.center().x(), box.top());
    path.lineTo(box.right(), box.center().y());
    path.lineTo(box.center().x(), box.bottom());
    path.lineTo(box.left(), box.center().y());
    path.closeSubpath();
    return path;
}

} // namespace

int widthOf(Mark mark, const QFont &font)
{
    if (mark == Mark::None)
        return 0;
    return QFontMetrics(font).horizontalAdvance(marks::textOf(mark)) + K::scaledPx(shapePx) +
           3 * K::scaledPx(besidesPx);
}

void paintShape(QPainter *painter, const QRectF &box, Mark mark)
{
    const QColor colour = colours::toColor(marks::colourOf(mark));
    const double stroke = box.width() / 5;
    const QPen line(colour, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(colour);
    switch (mark) {
    case Mark::None:
        break;
    case Mark::Comparing:
        painter->setPen(line);
        painter->setBrush(Qt::NoBrush);
        painter->drawArc(box.adjusted(stroke / 2, stroke / 2, -stroke / 2, -stroke / 2), 0,
                         270 * 16);
        break;
    case Mark::New:
        painter->drawEllipse(box);
        break;
    case Mark::Imported:
        painter->setPen(line);
        painter->setBrush(Qt::NoBrush);
        painter->drawPolyline(QPolygonF({{box.left(), box.center().y()},
                                         {box.left() + box.width() * 0.4, box.bottom()},
                                         {box.right(), box.top()}}));
        break;
    case Mark::Differs:
        painter->drawPath(triangle(box));
        break;
    case Mark::OtherOrder:
        painter->drawPath(diamond(box));
        break;
    }
}

void paint(QPainter *painter, const QRect &room, Mark mark, Ground ground)
{
    if (mark == Mark::None)
        return;
    const int height = qMin(K::scaledPx(heightPx), room.height());
    const int besides = K::scaledPx(besidesPx);
    const int shape = K::scaledPx(shapePx);
    const QRect box(room.left(), room.center().y() - height / 2, widthOf(mark, painter->font()),
                    height);
    QColor tint = colours::toColor(marks::colourOf(mark));
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(tint);
    if (ground == Ground::Picture) {
        painter->setBrush(colours::toColor(colours::surface));
        painter->drawRoundedRect(box, theme::radius(), theme::radius());
    }
    tint.setAlphaF(tintAlpha);
    painter->setBrush(tint);
    painter->drawRoundedRect(box, theme::radius(), theme::radius());
    paintShape(painter, QRectF(box.left() + besides, box.center().y() - shape / 2.0, shape, shape),
               mark);
    painter->setPen(colours::toColor(marks::colourOf(mark)));
    painter->drawText(box.adjusted(2 * besides + shape, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                      marks::textOf(mark));
}

} // namespace marktag

TaggedNameDelegate::TaggedNameDelegate(int markRole, QObject *parent)
    : ElidedTextDelegate(Qt::ElideMiddle, parent), markRole_(markRole)
{
}

void TaggedNameDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    const Mark mark = Mark(index.data(markRole_).toInt());
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const int width = marktag::widthOf(mark, cell.font);
    const QString name = cell.text;
    cell.text.clear();
    cellpainting::paintCell(painter, cell);
    const int space = theme::spacing() / 2;
    const QRect tag(option.rect.right() - width - space, option.rect.top(), width,
                    option.rect.height());
    const QRect room(option.rect.left() + space, option.rect.top(),
                     tag.left() - option.rect.left() - 2 * space, option.rect.height());
    painter->save();
    painter->setFont(cell.font);
    painter->setPen(cell.palette.color(QPalette::Text));
    painter->drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                      cell.fontMetrics.elidedText(name, Qt::ElideMiddle, room.width()));
    marktag::paint(painter, tag, mark);
    painter->restore();
}
