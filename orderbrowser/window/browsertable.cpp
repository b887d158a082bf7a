#include "orderbrowser/window/browsertable.h"

#include "app/context/k.h"
#include "orderbrowser/rules/fieldfilter.h"
#include "orderbrowser/window/filterheader.h"
#include "widgets/inputs/contextmenu.h"
#include "widgets/theme/theme.h"

#include <QGuiApplication>
#include <QItemSelection>
#include <QScrollBar>
#include <QSet>

#include <algorithm>

namespace {

constexpr int narrowestColumnPx = 40;
constexpr int widestFitPx = 420;

int designPixels(int pixels)
{
    return qMax(1, qRound(pixels * 100.0 / qMax(1, K::scaledPx(100))));
}

} // namespace

BrowserTable::BrowserTable(QWidget *parent)
    : FrozenTable(parent)
    , header_(new FilterHeader(this))
    , frozenHeader_(new FilterHeader(this))
    , paths_(new ElidedTextDelegate(Qt::ElideMiddle, this))
{
    setObjectName(QStringLiteral("orderTable"));
    setAccessibleName(QStringLiteral("订单"));
    setHorizontalHeader(header_);
    prepareTable(this);
    header_->setFixedHeight(theme::rowHeight() * 2);
    header_->setStretchLastSection(false);
    header_->setMinimumSectionSize(K::scaledPx(narrowestColumnPx));
    setFrozenHeader(frozenHeader_);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setModel(&model_);
    setContextMenuPolicy(Qt::CustomContextMenu);

    connect(this, &QWidget::customContextMenuRequested, this, &BrowserTable::menuWanted);
    connect(header_, &QHeaderView::sectionMoved, this, &BrowserTable::tellColumns);
    // Not in the midst of the move.
    connect(header_, &QHeaderView::sectionMoved, this, &BrowserTable::freezeColumns,
            Qt::QueuedConnection);
    connect(header_, &QHeaderView::sectionResized, this, &BrowserTable::tellColumns);
    for (FilterHeader *header : {header_, frozenHeader_})
        connectHeader(header);
    connect(this, &FrozenTable::frozenChanged, this, [this](int columns) {
        header_->setFieldPlaces(columns, INT_MAX);
        frozenHeader_->setFieldPlaces(0, columns);
    });
    frozenHeader_->setFieldPlaces(0, 0);
}

void BrowserTable::connectHeader(FilterHeader *header)
{
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QWidget::customContextMenuRequested, this,
            [this, header](const QPoint &position) {
                showHeadingMenu(header->logicalIndexAt(position),
                                header->viewport()->mapToGlobal(position));
            });
    connect(header, &QHeaderView::sectionClicked, this, [this](int column) {
        const bool added = QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
        emit sortingChanged(
            orderarrangement::clicked(view_.sorting, model_.field(column).key, added));
    });
    connect(header, &QHeaderView::sectionHandleDoubleClicked, this, &BrowserTable::fit);
    connect(header, &FilterHeader::filterTyped, this, [this](int column, const QString &text) {
        emit filterTyped(model_.field(column).key, text);
    });
    connect(header, &FilterHeader::leftDownwards, this, [this] {
        setFocus();
        if (!currentIndex().isValid() && model_.rowCount() > 0)
            setCurrentIndex(model_.index(0, 0));
    });
}

BrowserTable::~BrowserTable()
{
    // What shows the model outlives it by a moment.
    disconnect(header_, nullptr, this, nullptr);
    disconnect(frozenHeader_, nullptr, this, nullptr);
    disconnect(this, &FrozenTable::frozenChanged, this, nullptr);
    setModel(nullptr);
}

void BrowserTable::showView(const OrderView &view)
{
    view_ = view;
    model_.setSorting(view.sorting);
    applyColumns();
}

void BrowserTable::applyColumns()
{
    applying_ = true;
    const int scrolledRight = horizontalScrollBar()->value();
    model_.setColumns(view_.keys());
    for (int column = 0; column < model_.columnCount(); ++column)
        header_->moveSection(header_->visualIndex(column), column);
    for (const OrderView::Column &wanted : qAsConst(view_.columns)) {
        const int column = model_.columnOf(wanted.key);
        if (column < 0)
            continue;
        const int width = wanted.width > 0 ? wanted.width : model_.field(column).width;
        setColumnWidth(column, K::scaledPx(width));
        const bool isPath = model_.field(column).kind == orderfields::Kind::Path;
        setItemDelegateForColumn(column, isPath ? paths_ : nullptr);
    }
    applying_ = false;
    freezeColumns();
    horizontalScrollBar()->setValue(scrolledRight);
    showFilters(filters_);
}

/// The order number is second at most: what is frozen stands together.
void BrowserTable::freezeColumns()
{
    applying_ = true;
    const int number = model_.columnOf(orderfields::known().at(orderfields::Number).key);
    const int place = number < 0 ? -1 : header_->visualIndex(number);
    if (view_.frozen && place > 1)
        header_->moveSection(place, 1);
    applying_ = false;
    freeze(view_.frozen ? (place > 0 ? 2 : 1) : 0);
}

void BrowserTable::showFilters(const QHash<QString, QString> &filters)
{
    filters_ = filters;
    for (int column = 0; column < model_.columnCount(); ++column) {
        const orderfields::OrderField &field = model_.field(column);
        for (FilterHeader *header : {header_, frozenHeader_})
            header->setFilter(column, filters.value(field.key), FieldFilter::help(field.kind));
    }
}

void BrowserTable::focusFilter(int column)
{
    if (!frozenHeader_->focusFilter(column))
        header_->focusFilter(column);
}

void BrowserTable::showOrders(const OrderListing &listing, const QVector<int> &rows)
{
    QSet<OrderIdentity> selected;
    const auto selectedBefore = selectedRows();
    for (const int row : selectedBefore)
        selected.insert(model_.order(row).identity);
    const QModelIndex before = currentIndex();
    const OrderIdentity current =
        before.isValid() ? model_.order(before.row()).identity : OrderIdentity();
    const int column = qMax(0, before.column());
    const int scrolledRight = horizontalScrollBar()->value();
    const bool sameFields = listing.fields.size() == model_.listing().fields.size();

    model_.setOrders(listing, rows);
    if (!sameFields)
        applyColumns();
    QItemSelection selection;
    const int last = model_.columnCount() - 1;
    for (int row = 0; row < rows.size() && !selected.isEmpty() && last >= 0; ++row) {
        const OrderIdentity &identity = model_.order(row).identity;
        if (identity.isEmpty())
            continue;
        if (selected.contains(identity))
            selection.append(QItemSelectionRange(model_.index(row, 0), model_.index(row, last)));
        if (identity == current)
            selectionModel()->setCurrentIndex(model_.index(row, qMin(column, last)),
                                              QItemSelectionModel::NoUpdate);
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    horizontalScrollBar()->setValue(scrolledRight);
    emit selectionChangedTo(selectedRows().size());
    emit currentOrderChanged();
}

// What the user does to the headings.

void BrowserTable::tellColumns()
{
    if (applying_)
        return;
    QVector<OrderView::Column> shown;
    for (int place = 0; place < model_.columnCount(); ++place) {
        const int column = header_->logicalIndex(place);
        shown.append({model_.field(column).key, designPixels(columnWidth(column))});
    }
    // Fields that this listing lacks keep their places among the others.
    for (int i = 0; i < view_.columns.size(); ++i) {
        if (model_.columnOf(view_.columns.at(i).key) < 0)
            shown.insert(qMin(i, shown.size()), view_.columns.at(i));
    }
    view_.columns = shown;
    emit viewChanged(view_);
}

void BrowserTable::hideColumn(int column)
{
    const QString key = model_.field(column).key;
    view_.columns.erase(
        std::remove_if(view_.columns.begin(), view_.columns.end(),
                       [&key](const OrderView::Column &each) { return each.key == key; }),
        view_.columns.end());
    applyColumns();
    emit viewChanged(view_);
}

void BrowserTable::showColumn(const QString &key)
{
    view_.columns.append({key, 0});
    applyColumns();
    horizontalScrollBar()->setValue(horizontalScrollBar()->maximum());
    emit viewChanged(view_);
}

/// By group, as far as the listing has them.
void BrowserTable::addHiddenColumns(QMenu *menu)
{
    QHash<QString, QMenu *> groups;
    const QVector<orderfields::OrderField> &fields = model_.listing().fields;
    for (const orderfields::OrderField &field : fields) {
        if (view_.shows(field.key))
            continue;
        QMenu *&group = groups[field.group];
        if (!group) {
            group = new ContextMenu(this);
            group->setTitle(field.group);
            connect(menu, &QObject::destroyed, group, &QObject::deleteLater);
            menu->addMenu(group);
        }
        // An ampersand of a field's key is no mark of a key.
        QString text = field.heading;
        group->addAction(text.replace(QLatin1Char('&'), QLatin1String("&&")), this,
                         [this, key = field.key] { showColumn(key); });
    }
}

void BrowserTable::fit(int column)
{
    resizeColumnToContents(column);
    setColumnWidth(column, qMin(columnWidth(column) + theme::spacing(), K::scaledPx(widestFitPx)));
}

void BrowserTable::addFreezing(QMenu *menu)
{
    QAction *frozen = menu->addAction(QStringLiteral("冻结首列和订单号"));
    frozen->setCheckable(true);
    frozen->setChecked(view_.frozen);
    connect(frozen, &QAction::toggled, this, [this](bool on) {
        view_.frozen = on;
        applyColumns();
        emit viewChanged(view_);
    });
}

/// \a position on the screen.
void BrowserTable::showHeadingMenu(int column, const QPoint &position)
{
    if (column < 0)
        return;
    const QString key = model_.field(column).key;
    auto *menu = new ContextMenu(this);
    menu->setObjectName(QStringLiteral("headingMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto sort = [this, key](Qt::SortOrder order) {
        return [this, key, order] { emit sortingChanged({{key, order}}); };
    };
    menu->addAction(QStringLiteral("升序"), this, sort(Qt::AscendingOrder));
    menu->addAction(QStringLiteral("降序"), this, sort(Qt::DescendingOrder));
    menu->addAction(QStringLiteral("取消排序"), this, [this] { emit sortingChanged({}); })
        ->setEnabled(!view_.sorting.isEmpty());
    menu->addSeparator();
    menu->addAction(QStringLiteral("筛选..."), this, [this, column] { focusFilter(column); });
    menu->addAction(QStringLiteral("只看空的"), this,
                    [this, key] { emit filterTyped(key, QStringLiteral("空")); });
    menu->addAction(QStringLiteral("只看非空的"), this,
                    [this, key] { emit filterTyped(key, QStringLiteral("非空")); });
    menu->addSeparator();
    menu->addAction(QStringLiteral("合适列宽"), this, [this, column] { fit(column); });
    menu->addAction(QStringLiteral("全部合适列宽"), this, [this] {
        for (int each = 0; each < model_.columnCount(); ++each)
            fit(each);
    });
    menu->addAction(QStringLiteral("隐藏此列"), this, [this, column] { hideColumn(column); })
        ->setEnabled(model_.columnCount() > 1);
    addFreezing(menu);
    auto *hidden = new ContextMenu(this);
    hidden->setTitle(QStringLiteral("显示列"));
    connect(menu, &QObject::destroyed, hidden, &QObject::deleteLater);
    addHiddenColumns(hidden);
    menu->addMenu(hidden)->setEnabled(!hidden->isEmpty());
    menu->addAction(QStringLiteral("列设置..."), this, &BrowserTable::columnsWanted);
    menu->addAction(QStringLiteral("恢复此视图"), this, &BrowserTable::restoreWanted);
    menu->popup(position);
}

// What is selected.

void BrowserTable::selectionChanged(const QItemSelection &selected,
                                    const QItemSelection &deselected)
{
    FrozenTable::selectionChanged(selected, deselected);
    emit selectionChangedTo(selectedRows().size());
}

void BrowserTable::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    FrozenTable::currentChanged(current, previous);
    if (current.row() != previous.row())
        emit currentOrderChanged();
}

QVector<int> BrowserTable::selectedRows() const
{
    QSet<int> rows;
    const QItemSelection selection =
        selectionModel() ? selectionModel()->selection() : QItemSelection();
    for (const QItemSelectionRange &range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.insert(row);
    }
    QVector<int> sorted(rows.cbegin(), rows.cend());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

const BrowsedOrder *BrowserTable::currentOrder() const
{
    const QModelIndex current = currentIndex();
    return current.isValid() ? &model_.order(current.row()) : nullptr;
}

QStringList BrowserTable::shownKeys() const
{
    QStringList keys;
    for (int place = 0; place < model_.columnCount(); ++place)
        keys.append(model_.field(header_->logicalIndex(place)).key);
    return keys;
}

QString BrowserTable::selectedText() const
{
    QStringList lines;
    const auto rows = selectedRows();
    for (const int row : rows) {
        QStringList cells;
        for (int place = 0; place < model_.columnCount(); ++place) {
            const QModelIndex cell = model_.index(row, header_->logicalIndex(place));
            if (selectionModel()->isSelected(cell))
                cells.append(cell.data().toString());
        }
        lines.append(cells.join(QLatin1Char('\t')));
    }
    return lines.join(QLatin1Char('\n'));
}
