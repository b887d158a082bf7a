#include "widgets/tables/arrangedcolumns.h"

#include "app/context/choices.h"
#include "app/context/k.h"
#include "app/context/logging.h"
#include "widgets/inputs/contextmenu.h"
#include "widgets/tables/frozentable.h"

#include <QDebug>
#include <QEvent>
#include <QHeaderView>
#include <QSignalBlocker>
#include <QTimer>

namespace {

int designPixels(int pixels)
{
    return qMax(1, qRound(pixels * 100.0 / qMax(1, K::scaledPx(100))));
}

QString choiceOf(const QString &tool)
{
    return QStringLiteral("columns/") + tool;
}

} // namespace

ArrangedColumns::ArrangedColumns(FrozenTable *table, const QVector<int> &fixed)
    : QObject(table), table_(table), header_(table->horizontalHeader()), fixed_(fixed)
{
    for (int column = 0; column < header_->count(); ++column)
        usualWidths_.append(header_->sectionSize(column));
    header_->setSectionsMovable(true);
    makeFrozenHeader();
    connectHeaders();
    table_->freeze(fixed_.size());
}

/// Like the table's own, which it stands for where columns are frozen.
void ArrangedColumns::makeFrozenHeader()
{
    frozenHeader_ = new QHeaderView(Qt::Horizontal, table_);
    frozenHeader_->setHighlightSections(false);
    frozenHeader_->setSectionsClickable(true);
    frozenHeader_->setSortIndicatorShown(header_->isSortIndicatorShown());
    frozenHeader_->setSortIndicator(header_->sortIndicatorSection(), header_->sortIndicatorOrder());
    frozenHeader_->setTextElideMode(header_->textElideMode());
    frozenHeader_->setDefaultAlignment(header_->defaultAlignment());
    frozenHeader_->setFixedHeight(header_->minimumHeight());
    table_->setFrozenHeader(frozenHeader_);
    for (const int column : qAsConst(fixed_)) {
        if (header_->sectionResizeMode(column) == QHeaderView::Fixed)
            frozenHeader_->setSectionResizeMode(column, QHeaderView::Fixed);
    }
}

void ArrangedColumns::connectHeaders()
{
    connect(header_, &QHeaderView::sortIndicatorChanged, this,
            [this](int column, Qt::SortOrder order) {
                const QSignalBlocker blocker(frozenHeader_);
                frozenHeader_->setSortIndicator(column, order);
            });
    connect(frozenHeader_, &QHeaderView::sortIndicatorChanged, header_,
            &QHeaderView::setSortIndicator);
    connect(frozenHeader_, &QHeaderView::sectionHandleDoubleClicked, table_,
            &QTableView::resizeColumnToContents);
    connect(header_, &QHeaderView::sectionResized, this, [this](int column, int, int size) {
        if (!userActs_ || size == 0 ||
            (header_->stretchLastSection() && !isFixed(column) &&
             header_->visualIndex(column) == header_->count() - 1))
            return;
        sized_.insert(column);
        changed_ = true;
    });
    connect(header_, &QHeaderView::sectionMoved, this, [this] { changed_ |= userActs_; });
    // Not in the midst of the move.
    connect(header_, &QHeaderView::sectionMoved, this, &ArrangedColumns::keepFixedFirst,
            Qt::QueuedConnection);
    for (QHeaderView *header : {header_, frozenHeader_}) {
        header->viewport()->installEventFilter(this);
        header->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(header, &QWidget::customContextMenuRequested, this,
                [this, header](const QPoint &position) {
                    showMenu(header->logicalIndexAt(position),
                             header->viewport()->mapToGlobal(position));
                });
    }
}

bool ArrangedColumns::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick)
        userActs_ = true;
    else if (event->type() == QEvent::MouseButtonRelease)
        QTimer::singleShot(0, this, &ArrangedColumns::endOfUserAction); // the header moves first
    return QObject::eventFilter(watched, event);
}

void ArrangedColumns::endOfUserAction()
{
    userActs_ = false;
    keepFixedFirst();
    if (changed_)
        keep();
}

QString ArrangedColumns::keyOf(int column) const
{
    return table_->model()->headerData(column, Qt::Horizontal).toString();
}

QStringList ArrangedColumns::keys() const
{
    QStringList keys;
    for (int column = 0; column < usualWidths_.size(); ++column)
        keys.append(keyOf(column));
    return keys;
}

void ArrangedColumns::open(const QString &tool)
{
    tool_ = tool;
    const QString kept = choices::remembered(choiceOf(tool_));
    QString problem;
    const auto layout = kept.isEmpty() ? std::optional(ColumnLayout())
                                       : ColumnLayout::fromJson(kept.toUtf8(), &problem);
    if (!layout)
        qCWarning(lcTessavo) << "the columns of" << tool_ << "come as usual:" << problem;
    apply(layout.value_or(ColumnLayout()));
}

void ArrangedColumns::apply(const ColumnLayout &layout)
{
    const QStringList known = keys();
    const QStringList places = layout.placesOf(known);
    sized_.clear();
    for (int place = 0; place < places.size(); ++place) {
        const int column = known.indexOf(places.at(place));
        const ColumnLayout::Column wanted = layout.column(places.at(place));
        header_->moveSection(header_->visualIndex(column), place);
        header_->setSectionHidden(column, wanted.hidden && !isFixed(column));
        header_->resizeSection(column, wanted.width > 0 ? K::scaledPx(wanted.width)
                                                        : usualWidths_.at(column));
        if (wanted.width > 0)
            sized_.insert(column);
    }
    keepFixedFirst();
    changed_ = false;
    if (!isSized())
        emit widthsRestored();
}

void ArrangedColumns::keepFixedFirst()
{
    if (userActs_)
        return;
    for (int place = 0; place < fixed_.size(); ++place)
        header_->moveSection(header_->visualIndex(fixed_.at(place)), place);
}

void ArrangedColumns::keep()
{
    changed_ = false;
    if (tool_.isEmpty())
        return;
    ColumnLayout layout;
    for (int place = 0; place < header_->count(); ++place) {
        const int column = header_->logicalIndex(place);
        const bool hidden = header_->isSectionHidden(column);
        // A hidden column has no width to be read; it comes back with the one it came with.
        const int width =
            sized_.contains(column) && !hidden ? designPixels(header_->sectionSize(column)) : 0;
        layout.columns.append({keyOf(column), width, hidden});
    }
    choices::remember(choiceOf(tool_), QString::fromUtf8(layout.toJson()));
}

void ArrangedColumns::restoreDefaults()
{
    apply({});
    if (!tool_.isEmpty())
        choices::remember(choiceOf(tool_), {});
}

void ArrangedColumns::setHidden(int column, bool hidden)
{
    if (isFixed(column))
        return;
    header_->setSectionHidden(column, hidden);
    keep();
}

/// \a position on the screen.
void ArrangedColumns::showMenu(int column, const QPoint &position)
{
    auto *menu = new ContextMenu(table_);
    menu->setObjectName(QStringLiteral("headingMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("合适列宽"), this,
                    [this, column] {
                        userActs_ = true;
                        table_->resizeColumnToContents(column);
                        endOfUserAction();
                    })
        ->setEnabled(column >= 0);
    menu->addAction(QStringLiteral("隐藏此列"), this, [this, column] { setHidden(column, true); })
        ->setEnabled(column >= 0 && !isFixed(column));
    auto *hidden = new ContextMenu(table_);
    hidden->setTitle(QStringLiteral("显示列"));
    connect(menu, &QObject::destroyed, hidden, &QObject::deleteLater);
    for (int each = 0; each < header_->count(); ++each) {
        if (header_->isSectionHidden(each))
            hidden->addAction(keyOf(each), this, [this, each] { setHidden(each, false); });
    }
    menu->addMenu(hidden)->setEnabled(!hidden->isEmpty());
    menu->addAction(QStringLiteral("恢复默认列"), this, &ArrangedColumns::restoreDefaults);
    menu->popup(position);
}
