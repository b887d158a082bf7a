#include "fileimport/window/ordernumberbuttondelegate.h"

#include "look/colours.h"
#include "widgets/tables/cellpainting.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>

void OrderNumberButtonDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                      const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.text.clear();
    cellpainting::paintCell(painter, cell);

    const QStyle *style = cell.widget ? cell.widget->style() : QApplication::style();

    const bool hovered = option.state.testFlag(QStyle::State_MouseOver);
    QFont font = cell.font;
    font.setUnderline(hovered);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, cell.widget) + 1;
    const QRect room = option.rect.adjusted(margin, 0, -margin, 0);
    painter->save();
    painter->setFont(font);
    painter->setPen(QColor(hovered ? colours::linkHover : colours::link));
    painter->drawText(
        room, Qt::AlignCenter,
        QFontMetrics(font).elidedText(index.data().toString(), Qt::ElideMiddle, room.width()));
    painter->restore();
}

bool OrderNumberButtonDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                            const QStyleOptionViewItem &option,
                                            const QModelIndex &index)
{
    if (cellpainting::isClickIn(event, option.rect)) {
        emit orderNumberClicked(index.row(), index.data().toString());
        return true;
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}
