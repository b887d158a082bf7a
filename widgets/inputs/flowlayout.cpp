#include "widgets/inputs/flowlayout.h"

#include <QStyle>
#include <QWidget>

#include <algorithm>

FlowLayout::FlowLayout(QWidget *parent, int horizontalSpacing, int verticalSpacing)
    : QLayout(parent), horizontal_(horizontalSpacing), vertical_(verticalSpacing)
{
    setContentsMargins(0, 0, 0, 0);
}

FlowLayout::~FlowLayout()
{
    qDeleteAll(items_);
}

void FlowLayout::insertWidget(int index, QWidget *widget)
{
    addChildWidget(widget);
    items_.insert(index, new QWidgetItem(widget));
    invalidate();
}

void FlowLayout::moveItem(int from, int to)
{
    items_.move(from, to);
    invalidate();
}

void FlowLayout::addItem(QLayoutItem *item)
{
    items_.append(item);
    invalidate();
}

QLayoutItem *FlowLayout::takeAt(int index)
{
    if (index < 0 || index >= items_.size())
        return nullptr;
    invalidate();
    return items_.takeAt(index);
}

int FlowLayout::heightForWidth(int width) const
{
    return place(QRect(0, 0, width, 0), Placing::Measure);
}

QSize FlowLayout::minimumSize() const
{
    QSize largest(0, 0);
    for (const QLayoutItem *item : items_) {
        if (!item->isEmpty())
            largest = largest.expandedTo(item->minimumSize());
    }
    const QMargins margins = contentsMargins();
    return largest + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

void FlowLayout::setGeometry(const QRect &rect)
{
    QLayout::setGeometry(rect);
    place(rect, Placing::Move);
}

int FlowLayout::spacing(int wanted, Qt::Orientation orientation) const
{
    const QWidget *widget = parentWidget();
    if (wanted >= 0 || !widget)
        return std::max(wanted, 0);
    return std::max(0,
                    widget->style()->layoutSpacing(QSizePolicy::PushButton, QSizePolicy::PushButton,
                                                   orientation, nullptr, widget));
}

/// Returns the height that the items take within the width of \a rect, margins included.
int FlowLayout::place(const QRect &rect, Placing placing) const
{
    const QRect available = rect.marginsRemoved(contentsMargins());
    const int right = available.left() + available.width();
    int x = available.left();
    int y = available.top();
    int lineHeight = 0;
    for (QLayoutItem *item : items_) {
        if (item->isEmpty())
            continue;
        const QSize size = item->sizeHint();
        int nextX = x + size.width() + horizontalSpacing();
        if (nextX > right && lineHeight > 0) {
            x = available.left();
            y += lineHeight + verticalSpacing();
            nextX = x + size.width() + horizontalSpacing();
            lineHeight = 0;
        }
        if (placing == Placing::Move)
            item->setGeometry(QRect(QPoint(x, y), size));
        x = nextX;
        lineHeight = std::max(lineHeight, size.height());
    }
    return y + lineHeight - rect.y() + contentsMargins().bottom();
}
