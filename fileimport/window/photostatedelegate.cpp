#include "fileimport/window/photostatedelegate.h"

#include "fileimport/window/importordertablemodel.h"
#include "look/colours.h"
#include "widgets/tables/cellpainting.h"
#include "widgets/theme/theme.h"

#include <QPainter>

namespace {

bool hasLink(const QModelIndex &index)
{
    return index.data(ImportOrderTableModel::UnregisteredRole).toBool();
}

} // namespace

PhotoStateDelegate::PhotoStateDelegate(QObject *parent) : ElidedTextDelegate(Qt::ElideRight, parent)
{
}

QString PhotoStateDelegate::linkText()
{
    return QStringLiteral("重新登记");
}

QRect PhotoStateDelegate::linkRect(const QRect &cell, const QFont &font)
{
    const int width = QFontMetrics(font).horizontalAdvance(linkText()) + theme::spacing();
    return {cell.right() - width + 1, cell.top(), width, cell.height()};
}

int PhotoStateDelegate::cellWidth(const QString &stateText, const QFont &font)
{
    return QFontMetrics(font).horizontalAdvance(stateText) + linkRect({}, font).width() +
           2 * theme::spacing();
}

void PhotoStateDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    if (!hasLink(index)) {
        ElidedTextDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QString state = cell.text;
    cell.text.clear();
    cellpainting::paintCell(painter, cell);

    const QRect link = linkRect(option.rect, cell.font);
    const QRect room = option.rect.adjusted(theme::spacing() / 2, 0, -link.width(), 0);
    const bool hovered = option.state.testFlag(QStyle::State_MouseOver) && cell.widget &&
                         link.contains(cell.widget->mapFromGlobal(QCursor::pos()));
    QFont linkFont = cell.font;
    linkFont.setUnderline(true);
    painter->save();
    painter->setFont(cell.font);
    painter->setPen(cell.palette.color(QPalette::Text));
    painter->drawText(room, Qt::AlignCenter,
                      cell.fontMetrics.elidedText(state, Qt::ElideRight, room.width()));
    painter->setFont(linkFont);
    painter->setPen(colours::toColor(hovered ? colours::linkHover : colours::link));
    painter->drawText(link, Qt::AlignLeft | Qt::AlignVCenter, linkText());
    painter->restore();
}

bool PhotoStateDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                     const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (hasLink(index) && cellpainting::isClickIn(event, linkRect(option.rect, option.font))) {
        emit registerAgainClicked(index.row());
        return true;
    }
    return ElidedTextDelegate::editorEvent(event, model, option, index);
}
