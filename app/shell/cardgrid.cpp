#include "app/shell/cardgrid.h"

#include "widgets/theme/theme.h"

#include <QKeyEvent>

#include <algorithm>

namespace {

constexpr int mostColumns = 4;

int gap()
{
    return 2 * theme::spacing();
}

/// The enabled index found by going from \a from in steps of \a step; \a from when there is none.
int walk(const QVector<bool> &enabled, int from, int step)
{
    for (int i = from + step; i >= 0 && i < enabled.size(); i += step) {
        if (enabled.at(i))
            return i;
    }
    return from;
}

} // namespace

int cardplan::columnsFor(int width, int cardWidth, int gap)
{
    return std::clamp((width + gap) / (cardWidth + gap), 1, mostColumns);
}

int cardplan::neighbour(const QVector<bool> &enabled, int from, Qt::Key arrow, int columns)
{
    const int direction = arrow == Qt::Key_Left || arrow == Qt::Key_Up ? -1 : 1;
    const bool vertical = arrow == Qt::Key_Up || arrow == Qt::Key_Down;
    const int inColumn = vertical ? walk(enabled, from, direction * columns) : from;
    return inColumn != from ? inColumn : walk(enabled, from, direction);
}

CardGrid::CardGrid(QWidget *parent) : QWidget(parent)
{
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void CardGrid::addCard(QWidget *card)
{
    card->setParent(this);
    cards_.append(card);
    cardSize_ = cardSize_.expandedTo(card->minimumSize());
    layOut();
    updateGeometry();
}

int CardGrid::columns(int width) const
{
    return cardplan::columnsFor(width, cardSize_.width(), gap());
}

QSize CardGrid::sizeWith(int columns) const
{
    const int rows = (cards_.size() + columns - 1) / columns;
    return {columns * (cardSize_.width() + gap()) - gap(),
            std::max(0, rows * (cardSize_.height() + gap()) - gap())};
}

int CardGrid::heightForWidth(int width) const
{
    return sizeWith(columns(width)).height();
}

QSize CardGrid::minimumSizeHint() const
{
    return cardSize_;
}

QSize CardGrid::sizeHint() const
{
    return sizeWith(mostColumns);
}

void CardGrid::layOut()
{
    const int inRow = columns(width());
    const int left = std::max(0, (width() - sizeWith(inRow).width()) / 2);
    for (int i = 0; i < cards_.size(); ++i) {
        cards_.at(i)->move(left + i % inRow * (cardSize_.width() + gap()),
                           i / inRow * (cardSize_.height() + gap()));
    }
}

void CardGrid::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void CardGrid::keyPressEvent(QKeyEvent *event)
{
    const int from = cards_.indexOf(focusWidget());
    const auto arrow = Qt::Key(event->key());
    const bool isArrow = arrow == Qt::Key_Left || arrow == Qt::Key_Right || arrow == Qt::Key_Up ||
                         arrow == Qt::Key_Down;
    if (from < 0 || !isArrow) {
        QWidget::keyPressEvent(event);
        return;
    }
    QVector<bool> enabled;
    for (const QWidget *card : qAsConst(cards_))
        enabled.append(card->isEnabled());
    QWidget *next = cards_.at(cardplan::neighbour(enabled, from, arrow, columns(width())));
    next->setFocus(Qt::OtherFocusReason);
    emit focusMoved(next);
}
