#include "batchdelete/window/batchdelete_orderlistwidget.h"

#include "app/context/k.h"
#include "batchdelete/window/batchdeleteordermodel.h"
#include "widgets/inputs/customcheckboxnew.h"
#include "widgets/tables/arrangedcolumns.h"
#include "widgets/tables/frozentable.h"
#include "widgets/tables/sortedrows.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace {

using Model = BatchDeleteOrderModel;

/// Of each column in design pixels: how wide it starts, and how far it gives way in a narrow window
/// for the buttons of the progress column to stay in sight.
constexpr struct
{
    int wanted;
    int least;
} columnWidths[Model::ColumnCount] = {{104, 100}, {92, 80},   {112, 68}, {60, 56},
                                      {140, 84},  {240, 200}, {90, 90},  {180, 180}};

} // namespace

BatchDelete_OrderListWidget::BatchDelete_OrderListWidget(BatchDeleteOrderModel *model,
                                                         QWidget *parent)
    : QWidget(parent)
    , model_(model)
    , table_(new FrozenTable(this))
    , selectAll_(new CustomCheckBoxNew(QStringLiteral("全选"), table_->horizontalHeader()))
    , overlay_(new LoadingOverlay(table_))
{
    buildTable();
    addActions();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(table_);

    selectAll_->setObjectName(QStringLiteral("selectAllBox"));
    // Its third state is shown, not chosen.
    connect(selectAll_, &QCheckBox::clicked, this,
            [this] { onSelectAllChanged(selectAll_->checkState()); });
    connect(model_, &Model::checkStateChanged, this,
            &BatchDelete_OrderListWidget::onCheckBoxStateChanged);
    connect(model_, &QAbstractItemModel::modelReset, this,
            [this] { onCheckBoxStateChanged(Qt::Unchecked); });
    QHeaderView *header = table_->horizontalHeader();
    header->installEventFilter(this);
    connect(header, &QHeaderView::sectionResized, this, [this] { placeSelectAll(); });
    connect(table_, &FrozenTable::frozenChanged, this, [this] { placeSelectAll(); });
    connect(columns_, &ArrangedColumns::widthsRestored, this,
            &BatchDelete_OrderListWidget::fitColumns);
    connect(header, &QHeaderView::geometriesChanged, this, [this] { placeSelectAll(); });
    connect(table_->horizontalScrollBar(), &QAbstractSlider::valueChanged, this,
            [this] { placeSelectAll(); });
}

void BatchDelete_OrderListWidget::buildTable()
{
    table_->setObjectName(QStringLiteral("orderTable"));
    table_->setAccessibleName(QStringLiteral("订单"));
    prepareTable(table_);
    rows_ = new SortedRows(table_, model_, Model::SortRole);

    auto *progress = new BatchDeleteProgressDelegate(table_);
    table_->setItemDelegateForColumn(Model::CheckColumn, new BatchDeleteCheckDelegate(table_));
    table_->setItemDelegateForColumn(Model::ProgressColumn, progress);
    table_->setItemDelegateForColumn(Model::PathColumn,
                                     new ElidedTextDelegate(Qt::ElideMiddle, table_));
    for (int column = 0; column < Model::ColumnCount; ++column)
        table_->setColumnWidth(column, K::scaledPx(columnWidths[column].wanted));
    columns_ = new ArrangedColumns(table_, {Model::CheckColumn, Model::NumberColumn});
    connect(progress, &BatchDeleteProgressDelegate::buttonClicked, this,
            [this](int row, BatchDeleteProgressDelegate::Button button) {
                emit viewClicked(rows_->position(row), button);
            });
    connect(rows_, &SortedRows::currentChanged, this,
            &BatchDelete_OrderListWidget::onTableSelectionChanged);
}

void BatchDelete_OrderListWidget::addActions()
{
    using Delegate = BatchDeleteProgressDelegate;
    rows_->addAction(QStringLiteral("勾选/取消勾选"), Qt::Key_Space, [this](int row) {
        const QModelIndex cell = model_->index(row, Model::CheckColumn);
        const bool checked = cell.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        model_->setData(cell, int(checked ? Qt::Unchecked : Qt::Checked), Qt::CheckStateRole);
    });
    rows_->addAction(Delegate::text(Delegate::ViewSucceeded), {},
                     [this](int row) { emit viewClicked(row, Delegate::ViewSucceeded); });
    rows_->addAction(Delegate::text(Delegate::ViewFailed), {},
                     [this](int row) { emit viewClicked(row, Delegate::ViewFailed); });
    rows_->addAction(QStringLiteral("打开目录"), Qt::CTRL + Qt::Key_E,
                     [this](int row) { emit openFolderClicked(row); });
    rows_->addAction(QStringLiteral("复制订单号"), QKeySequence::Copy,
                     [this](int row) { emit copyNumberClicked(row); });
}

void BatchDelete_OrderListWidget::openColumns()
{
    columns_->open(QStringLiteral("batchdelete"));
}

int BatchDelete_OrderListWidget::selectedRow() const
{
    return rows_->current();
}

void BatchDelete_OrderListWidget::selectRow(int row)
{
    if (model_->hasRow(row))
        rows_->makeCurrent(row);
}

void BatchDelete_OrderListWidget::keepPlaceWhile(const std::function<void()> &change)
{
    rows_->keepPlaceWhile(
        change, {[this](int row) {
                     return model_->hasRow(row) ? model_->order(row).identity() : OrderIdentity();
                 },
                 [this](const OrderIdentity &order) { return model_->rowOf(order); }});
}

void BatchDelete_OrderListWidget::setCheckable(bool checkable)
{
    model_->setCheckable(checkable);
    selectAll_->setEnabled(checkable);
}

void BatchDelete_OrderListWidget::onTableSelectionChanged()
{
    const int row = selectedRow();
    emit singleOrderClicked(model_->hasRow(row) ? model_->order(row) : BatchDeleteOrderInfo());
}

void BatchDelete_OrderListWidget::onCheckBoxStateChanged(int state)
{
    Q_UNUSED(state) // of one order; what counts is all of them
    const QSignalBlocker blocker(selectAll_);
    selectAll_->setCheckState(model_->allChecked());
    emit orderSelectionChanged(model_->checkedOrders().toList());
}

void BatchDelete_OrderListWidget::onSelectAllChanged(int state)
{
    selectAll_->setTristate(false);
    model_->checkAll(state != Qt::Unchecked);
}

bool BatchDelete_OrderListWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) {
        fitColumns();
        placeSelectAll();
    }
    return QWidget::eventFilter(watched, event);
}

void BatchDelete_OrderListWidget::fitColumns()
{
    if (columns_->isSized())
        return;
    int wanted = 0;
    int least = 0;
    for (int column = 0; column <= Model::ProgressColumn; ++column) {
        wanted += K::scaledPx(columnWidths[column].wanted);
        least += K::scaledPx(columnWidths[column].least);
    }
    const double givenWay =
        qBound(0.0, double(wanted - table_->horizontalHeader()->width()) / (wanted - least), 1.0);
    for (int column = 0; column <= Model::ProgressColumn; ++column) {
        const auto &width = columnWidths[column];
        const double pixels = K::scaledPx(width.wanted) -
                              givenWay * (K::scaledPx(width.wanted) - K::scaledPx(width.least));
        table_->setColumnWidth(column, int(pixels));
    }
}

/// At the right of its section, beside the section's own text, in the header that shows it.
void BatchDelete_OrderListWidget::placeSelectAll()
{
    QHeaderView *header =
        table_->frozenColumns() > 0 ? columns_->frozenHeader() : table_->horizontalHeader();
    if (selectAll_->parentWidget() != header) {
        selectAll_->setParent(header);
        selectAll_->show();
    }
    const QSize size = selectAll_->sizeHint();
    const int right = header->sectionViewportPosition(Model::CheckColumn) +
                      header->sectionSize(Model::CheckColumn) - theme::spacing() / 2;
    selectAll_->setGeometry(right - size.width(), (header->height() - size.height()) / 2,
                            size.width(), size.height());
}
