#include "fileimport/window/orderactionsdelegate.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/tables/cellpainting.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int gapPx = 6;     // around and between the buttons
constexpr int paddingPx = 8; // left and right of a text
constexpr int abovePx = 5;

QRgb colourOf(OrderActionsDelegate::Action action, bool hovered)
{
    switch (action) {
    case OrderActionsDelegate::SelectFiles:
        return hovered ? colours::chooseActionHover : colours::chooseAction;
    case OrderActionsDelegate::ClearFiles:
        return hovered ? colours::clearActionHover : colours::clearAction;
    default:
        return hovered ? colours::openActionHover : colours::openAction;
    }
}

QPoint mouseIn(const QStyleOptionViewItem &option)
{
    return option.widget ? option.widget->mapFromGlobal(QCursor::pos()) : QPoint(-1, -1);
}

} // namespace

QString OrderActionsDelegate::text(Action action)
{
    switch (action) {
    case SelectFiles:
        return QStringLiteral("选择文件");
    case ClearFiles:
        return QStringLiteral("清空已选");
    default:
        return QStringLiteral("打开目录");
    }
}

QRect OrderActionsDelegate::buttonRect(const QRect &cell, Action action)
{
    const int gap = K::scaledPx(gapPx);
    const int above = K::scaledPx(abovePx);
    const int width = (cell.width() - (ActionCount + 1) * gap) / ActionCount;
    return {cell.left() + gap + action * (width + gap), cell.top() + above, width,
            cell.height() - 2 * above};
}

int OrderActionsDelegate::cellWidth(const QFont &font)
{
    const QFontMetrics metrics(font);
    int widest = 0;
    for (int action = 0; action < ActionCount; ++action)
        widest = std::max(widest, metrics.horizontalAdvance(text(Action(action))));
    return ActionCount * (widest + 2 * K::scaledPx(paddingPx)) +
           (ActionCount + 1) * K::scaledPx(gapPx);
}

void OrderActionsDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cellpainting::paintCell(painter, cell);

    const bool mouseOver = option.state.testFlag(QStyle::State_MouseOver);
    painter->save();
    paintButtons(painter, option.rect, mouseOver ? mouseIn(option) : QPoint(-1, -1));
    painter->restore();
}

void OrderActionsDelegate::paintButtons(QPainter *painter, const QRect &cell, const QPoint &mouse)
{
    for (int action = 0; action < ActionCount; ++action) {
        const QRect button = buttonRect(cell, Action(action));
        cellpainting::paintButton(painter, button, text(Action(action)),
                                  colourOf(Action(action), button.contains(mouse)));
    }
}

bool OrderActionsDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                       const QStyleOptionViewItem &option, const QModelIndex &index)
{
    for (int action = 0; action < ActionCount; ++action) {
        if (cellpainting::isClickIn(event, buttonRect(option.rect, Action(action)))) {
            emit actionClicked(index.row(), Action(action));
            return true;
        }
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}
