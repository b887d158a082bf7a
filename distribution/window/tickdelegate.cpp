#include "distribution/window/tickdelegate.h"

#include "widgets/inputs/customcheckboxnew.h"
#include "widgets/tables/cellpainting.h"
#include "widgets/theme/theme.h"

#include <QMouseEvent>
#include <QPainter>

void TickDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QString text = cell.text;
    cell.features &= ~QStyleOptionViewItem::HasCheckIndicator;
    cell.text.clear();
    cellpainting::paintCell(painter, cell);

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
    CheckBoxLook look;
    look.state = Qt::CheckState(index.data(Qt::CheckStateRole).toInt());
    look.enabled = !locked_ && option.state.testFlag(QStyle::State_Enabled);
    look.hovered = option.state.testFlag(QStyle::State_MouseOver);
    paintCheckBox(painter, box, look);
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
