#include "widgets/tables/tables.h"

#include "look/colours.h"
#include "widgets/inputs/contextmenu.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

namespace {

/// Rows looked at for a column's width: a list of thousands must not be measured whole.
constexpr int measuredRows = 100;

QString shownText(const QStyleOptionViewItem &option, const QWidget *view)
{
    const QStyle *style = view->style();
    const QRect area = style->subElementRect(QStyle::SE_ItemViewItemText, &option, view);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, view) + 1;
    return option.fontMetrics.elidedText(option.text, option.textElideMode,
                                         area.width() - 2 * margin);
}

} // namespace

void prepareTable(QTableView *table)
{
    table->setStyleSheet(theme::tableStyle());
    table->setItemDelegate(new ElidedTextDelegate(Qt::ElideRight, table));
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setSortingEnabled(false);
    table->setMouseTracking(true);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);

    QHeaderView *rows = table->verticalHeader();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setMinimumSectionSize(theme::rowHeight());
    rows->setDefaultSectionSize(theme::rowHeight());
    rows->hide();

    QHeaderView *columns = table->horizontalHeader();
    columns->setHighlightSections(false);
    columns->setMinimumSectionSize(theme::rowHeight());
    columns->setFixedHeight(theme::rowHeight());
    columns->setDefaultSectionSize(theme::columnWidth());
    columns->setResizeContentsPrecision(measuredRows);
    columns->setTextElideMode(Qt::ElideRight);
    columns->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    columns->setStretchLastSection(true);
}

void wrapHeaders(QTableView *table)
{
    QHeaderView *columns = table->horizontalHeader();
    columns->setTextElideMode(Qt::ElideNone); // what is elided would not wrap
    columns->setDefaultAlignment(Qt::AlignCenter | static_cast<Qt::Alignment>(Qt::TextWordWrap));
    columns->setFixedHeight(theme::rowHeight() * 3 / 2);
}

QAction *addTableAction(QAbstractItemView *view, const QString &text, const QKeySequence &shortcut,
                        std::function<void()> act)
{
    auto *action = new QAction(text, view);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetShortcut);
    view->addAction(action);
    QObject::connect(action, &QAction::triggered, view, std::move(act));
    if (view->contextMenuPolicy() != Qt::CustomContextMenu) {
        view->setContextMenuPolicy(Qt::CustomContextMenu);
        QObject::connect(view, &QWidget::customContextMenuRequested, view,
                         [view](const QPoint &position) { popUpActions(view, position); });
    }
    return action;
}

void popUpActions(QAbstractItemView *view, const QPoint &position)
{
    auto *menu = new ContextMenu(view);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(view->actions());
    menu->popup(view->viewport()->mapToGlobal(position));
}

ElidedTextDelegate::ElidedTextDelegate(Qt::TextElideMode mode, QObject *parent)
    : QStyledItemDelegate(parent), mode_(mode)
{
}

void ElidedTextDelegate::initStyleOption(QStyleOptionViewItem *option,
                                         const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->textElideMode = mode_;
    // A state keeps its colour on the selected row; the selection is pale enough for it.
    if (index.data(Qt::ForegroundRole).isValid())
        option->palette.setBrush(QPalette::HighlightedText, option->palette.text());
}

bool ElidedTextDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                                   const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid() ||
        index.data(Qt::ToolTipRole).isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QStyleOptionViewItem filled = option;
    initStyleOption(&filled, index);
    if (shownText(filled, view) == filled.text) {
        QToolTip::hideText();
        event->ignore();
        return false;
    }
    showPlainTip(event->globalPos(), filled.text, view);
    return true;
}

EmptyStateTable::EmptyStateTable(QWidget *parent) : PlainTips(parent), pointerArea_(viewport())
{
}

/// The framework repaints the whole table for more than one changed cell; while an import changes
/// row after row that would keep the interface busy with nothing else.
void EmptyStateTable::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                  const QVector<int> &roles)
{
    if (!topLeft.isValid() || topLeft.row() != bottomRight.row() ||
        topLeft.column() == bottomRight.column()) {
        QTableView::dataChanged(topLeft, bottomRight, roles);
        return;
    }
    for (int column = topLeft.column(); column <= bottomRight.column(); ++column)
        update(topLeft.sibling(topLeft.row(), column));
}

/// A moment after a click the framework brings the clicked cell wholly into view. Rows are what is
/// chosen here; moving sideways would take the next button away from under the mouse.
void EmptyStateTable::timerEvent(QTimerEvent *event)
{
    const int scrolledRight = horizontalScrollBar()->value();
    QTableView::timerEvent(event);
    horizontalScrollBar()->setValue(scrolledRight);
}

void EmptyStateTable::setEmptyText(const QString &text)
{
    emptyText_ = text;
    viewport()->update();
}

void EmptyStateTable::shadeHoveredRow(QRgb colour)
{
    hoverColour_ = colour;
    // Another row comes under a pointer that stands still.
    connect(verticalScrollBar(), &QScrollBar::valueChanged, viewport(),
            QOverload<>::of(&QWidget::update));
}

void EmptyStateTable::paintEvent(QPaintEvent *event)
{
    const int hovered = rowAt(viewport()->mapFromGlobal(QCursor::pos()).y());
    if (pointerArea_->underMouse() && hovered >= 0) {
        QPainter(viewport())
            .fillRect(0, rowViewportPosition(hovered), viewport()->width(), rowHeight(hovered),
                      colours::toColor(hoverColour_));
    }
    QTableView::paintEvent(event);
    if (emptyText_.isEmpty() || (model() && model()->rowCount(rootIndex()) > 0))
        return;
    QPainter painter(viewport());
    painter.setPen(colours::toColor(colours::placeholder));
    const QRect area = viewport()->rect().adjusted(theme::margin(), 0, -theme::margin(), 0);
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
}
