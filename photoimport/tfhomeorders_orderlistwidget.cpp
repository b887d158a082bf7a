#include "photoimport/tfhomeorders_orderlistwidget.h"

#include "app/context/k.h"
#include "photoimport/tforderlistmodel.h"
#include "photoimport/tfprogressdelegate.h"
#include "widgets/contextmenu.h"

#include <QAction>
#include <QHeaderView>
#include <QScrollBar>
#include <QSortFilterProxyModel>

tfhomeorders_OrderListWidget::tfhomeorders_OrderListWidget(tforderlistmodel *model, QWidget *parent)
    : FileDropTable(parent), model_(model), proxy_(new QSortFilterProxyModel(this))
{
    proxy_->setSourceModel(model_);
    proxy_->setSortRole(tforderlistmodel::SortRole);
    // Rows must not jump about under the mouse while an import changes their states.
    proxy_->setDynamicSortFilter(false);
    setObjectName(QStringLiteral("orderTable"));
    prepareTable(this);
    wrapHeaders(this);
    setModel(proxy_);
    setSortingEnabled(true);
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setItemDelegateForColumn(tforderlistmodel::ProgressColumn, new tfprogressdelegate(this));
    setItemDelegateForColumn(tforderlistmodel::PathColumn,
                             new ElidedTextDelegate(Qt::ElideMiddle, this));
    setColumnWidths();
    connect(this, &FileDropTable::filesDropped, this, [this](int row, const QStringList &paths) {
        emit filesDroppedOnOrder(sourceRow(row), paths);
    });
    connect(this, &QWidget::customContextMenuRequested, this,
            &tfhomeorders_OrderListWidget::showContextMenu);
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &tfhomeorders_OrderListWidget::orderSelectionChanged);
}

void tfhomeorders_OrderListWidget::setColumnWidths()
{
    using Model = tforderlistmodel;
    const struct
    {
        Model::Column column;
        int width;
    } widths[] = {
        {Model::NumberColumn, 90},       {Model::CustomersColumn, 110}, {Model::ShotDateColumn, 88},
        {Model::PhotographerColumn, 60}, {Model::ImportedColumn, 44},   {Model::ChosenColumn, 44},
        {Model::StateColumn, 104},       {Model::ProgressColumn, 76},   {Model::PathColumn, 140},
    };
    for (const auto &entry : widths)
        setColumnWidth(entry.column, K::scaledPx(entry.width));
}

int tfhomeorders_OrderListWidget::sourceRow(int viewRow) const
{
    return proxy_->mapToSource(proxy_->index(viewRow, 0)).row();
}

int tfhomeorders_OrderListWidget::selectedOrder() const
{
    const QModelIndex current = selectionModel()->currentIndex();
    return current.isValid() ? sourceRow(current.row()) : -1;
}

void tfhomeorders_OrderListWidget::keepPlaceWhile(const std::function<void()> &change)
{
    const int before = selectedOrder();
    const QString orderId = model_->hasRow(before) ? model_->order(before).info.id : QString();
    const int scrolledDown = verticalScrollBar()->value();
    const int scrolledRight = horizontalScrollBar()->value();
    change();
    // The proxy sorts by itself only when it is told to.
    proxy_->sort(horizontalHeader()->sortIndicatorSection(),
                 horizontalHeader()->sortIndicatorOrder());
    const int row = model_->rowOf(orderId);
    if (row >= 0) {
        const QModelIndex index = proxy_->mapFromSource(model_->index(row, 0));
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                     QItemSelectionModel::Rows);
    }
    verticalScrollBar()->setValue(scrolledDown);
    horizontalScrollBar()->setValue(scrolledRight);
    if (row < 0)
        emit orderSelectionChanged();
}

void tfhomeorders_OrderListWidget::addOrderAction(const QString &text, const QKeySequence &shortcut,
                                                  std::function<void(int row)> act)
{
    auto *action = new QAction(text, this);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetShortcut);
    addAction(action);
    connect(action, &QAction::triggered, this, [this, act = std::move(act)] {
        if (selectedOrder() >= 0)
            act(selectedOrder());
    });
}

void tfhomeorders_OrderListWidget::showContextMenu(const QPoint &position)
{
    if (selectedOrder() < 0)
        return;
    auto *menu = new ContextMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(actions());
    menu->popup(viewport()->mapToGlobal(position));
}
