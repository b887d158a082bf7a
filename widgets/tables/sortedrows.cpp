#include "widgets/tables/sortedrows.h"

#include "widgets/tables/tables.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QTableView>

SortedRows::SortedRows(QTableView *table, QAbstractItemModel *model, int sortRole)
    : QObject(table), table_(table), model_(model), proxy_(new QSortFilterProxyModel(this))
{
    proxy_->setSourceModel(model_);
    proxy_->setSortRole(sortRole);
    proxy_->setDynamicSortFilter(false);
    table_->setModel(proxy_);
    table_->setSortingEnabled(true);
    table_->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    table_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(table_, &QWidget::customContextMenuRequested, this, &SortedRows::showMenu);
    connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &SortedRows::currentChanged);
}

int SortedRows::count() const
{
    return proxy_->rowCount();
}

int SortedRows::position(int viewRow) const
{
    return proxy_->mapToSource(proxy_->index(viewRow, 0)).row();
}

int SortedRows::current() const
{
    const QModelIndex current = table_->selectionModel()->currentIndex();
    return current.isValid() ? position(current.row()) : -1;
}

void SortedRows::makeCurrent(int position)
{
    const QModelIndex index = proxy_->mapFromSource(model_->index(position, 0));
    table_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                         QItemSelectionModel::Rows);
}

void SortedRows::sortAgain()
{
    // The proxy sorts by itself only when it is told to.
    const QHeaderView *header = table_->horizontalHeader();
    proxy_->sort(header->sortIndicatorSection(), header->sortIndicatorOrder());
}

void SortedRows::keepPlaceWhile(const std::function<void()> &change, const Ids &ids)
{
    const OrderIdentity order = ids.identityOf(current());
    const int scrolledDown = table_->verticalScrollBar()->value();
    const int scrolledRight = table_->horizontalScrollBar()->value();
    change();
    sortAgain();
    const int row = ids.positionOf(order);
    if (row >= 0)
        makeCurrent(row);
    table_->verticalScrollBar()->setValue(scrolledDown);
    table_->horizontalScrollBar()->setValue(scrolledRight);
    if (row < 0)
        emit currentChanged();
}

QAction *SortedRows::addAction(const QString &text, const QKeySequence &shortcut,
                               std::function<void(int position)> act)
{
    return addTableAction(table_, text, shortcut, [this, act = std::move(act)] {
        if (current() >= 0)
            act(current());
    });
}

void SortedRows::showMenu(const QPoint &position)
{
    if (current() < 0)
        return;
    emit menuOpens(current());
    popUpActions(table_, position);
}
