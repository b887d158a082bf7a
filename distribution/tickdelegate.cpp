#include "distribution/tickdelegate.h"

#include "widgets/cellpainting.h"
#include "widgets/colours.h"
#include "widgets/theme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

void TickDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QString text = cell.text;
    cell.features &= ~QStyleOptionViewItem::HasCheckIndicator;
    cell.text.clear();
    cellpainting::paintCell(painter, cell);

    const bool ticked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    const qreal side = theme::checkBoxSize();
    QRectF box(0, 0, side, side);
    box.moveCenter(QRectF(option.rect).center());
    painter->save();
    if (!text.isEmpty()) {
        box.moveLeft(option.rect.left() + theme::spacing() / 2.0);
        const QRect room =
            option.rect.adjusted(int(side) + theme::spacing(), 0, -theme::spacing() / 2, 0);
        painter->setFont(cell.font);
        painter->setPen(cell.palette.color(QPalette::Text));
        painter->drawText(room, Qt::AlignVCenter | Qt::AlignLeft,
                          cell.fontMetrics.elidedText(text, cell.textElideMode, room.width()));
    }
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(colours::toColor(ticked ? colours::accent : colours::outlineHover),
                         theme::hairline()));
    painter->setBrush(colours::toColor(ticked ? colours::accent : colours::surface));
    painter->drawRoundedRect(box, theme::radius() / 2.0, theme::radius() / 2.0);
    if (ticked) {
        QPainterPath mark;
        mark.moveTo(box.left() + side * 0.24, box.top() + side * 0.52);
        mark.lineTo(box.left() + side * 0.43, box.top() + side * 0.70);
        mark.lineTo(box.left() + side * 0.77, box.top() + side * 0.32);
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(colours::toColor(colours::onFilled), side * 0.12, Qt::SolidLine,
                             Qt::RoundCap, Qt::RoundJoin));
        painter->drawPath(mark);
    }
    painter->restore();
}

QSize TickDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QSize usual = QStyledItemDelegate::sizeHint(option, index);
    return {usual.width(), qMax(usual.height(), theme::checkBoxSize() + theme::spacing() / 2)};
}

bool TickDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                               const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() != QEvent::MouseButtonRelease ||
        !model->flags(index).testFlag(Qt::ItemIsUserCheckable))
        return QStyledItemDelegate::editorEvent(event, model, option, index); // keys among them
    if (static_cast<QMouseEvent *>(event)->button() != Qt::LeftButton)
        return false;
    const bool ticked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    return model->setData(index, ticked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}
