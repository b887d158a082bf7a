#include "cardcheck/window/soughtorderpanel.h"

#include "app/context/k.h"
#include "widgets/orders/orderfinder.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/tables/sortedrows.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QVBoxLayout>

#include <array>
#include <utility>

namespace {

QString checkingText()
{
    return QStringLiteral("正在核对，请等待完成或先取消");
}

} // namespace

SoughtOrderPanel::SoughtOrderPanel(QWidget *parent)
    : QWidget(parent)
    , searchBar_(new OrderSearchBar(this))
    , table_(new EmptyStateTable(this))
    , finder_(new OrderFinder(this, {&branch_, searchBar_, table_, new LoadingOverlay(table_)}))
    , selected_(new PlainLabel(this))
{
    setObjectName(QStringLiteral("soughtOrders"));
    auto *heading = new PlainLabel(QStringLiteral("本机没有记录的文件，在这些订单里查找"));
    heading->setStyleSheet(theme::headingStyle());
    heading->setIndent(0);
    selected_->setObjectName(QStringLiteral("selectedOrdersLabel"));
    selected_->setStyleSheet(theme::hintStyle());
    selected_->setWordWrap(true);
    buildTable();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(heading);
    layout->addWidget(searchBar_);
    layout->addWidget(table_, 1);
    layout->addWidget(selected_);
    connectFinder();
    showSelected();
}

SoughtOrderPanel::~SoughtOrderPanel()
{
    daySearch_.disconnect();
    // The table outlives the model it shows by a moment.
    disconnect(rows_, nullptr, this, nullptr);
    disconnect(table_->selectionModel(), nullptr, this, nullptr);
}

void SoughtOrderPanel::buildTable()
{
    table_->setObjectName(QStringLiteral("orderTable"));
    table_->setAccessibleName(QStringLiteral("订单"));
    prepareTable(table_);
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table_->setEmptyText(QStringLiteral("选择存储卡后，自动列出拍摄日期的订单；也可以搜索"));
    rows_ = new SortedRows(table_, &orders_, SoughtOrderModel::SortRole);
    static constexpr std::array<int, SoughtOrderModel::ColumnCount> widths{86, 110, 86, 180};
    for (int column = 0; column < SoughtOrderModel::ColumnCount; ++column)
        table_->setColumnWidth(column, K::scaledPx(widths[std::size_t(column)]));
    table_->setItemDelegateForColumn(SoughtOrderModel::FolderColumn,
                                     new ElidedTextDelegate(Qt::ElideMiddle, table_));
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &SoughtOrderPanel::showSelected);
    connect(table_->model(), &QAbstractItemModel::modelReset, this,
            &SoughtOrderPanel::showSelected);
}

void SoughtOrderPanel::connectFinder()
{
    finder_->setLeaving({[this] { return locked_ ? checkingText() : QString(); }, {}});
    OrderFinder::Ways ways;
    ways.keepsKeyword = true;
    finder_->setWays(ways);
    finder_->setReader(&soughtorders::read, [this](const soughtorders::Found &found,
                                                   OrderFinder::Search) { take(found); });
    connect(&daySearch_, &DaySearch::finished, this,
            [this](const ServiceReply &reply, const soughtorders::Found &found,
                   const QVector<orderfolders::OrderFolder> &folders) {
                // Nobody asked for it: days without orders, and failures, are no news.
                if (!reply.isSuccess() || locked_ || searchBar_->isBusy())
                    return;
                orderfolders::remember(folders);
                takeDays(found);
            });
    connect(finder_, &OrderFinder::branchLeft, this, [this] {
        daySearch_.cancel();
        orders_.setOrders({});
    });
    connect(finder_, &OrderFinder::branchSwitched, this, [this] {
        if (std::exchange(searchesNext_, false))
            finder_->search();
        else
            seekDays(days_);
    });
    connect(searchBar_, &OrderSearchBar::searchRequested, this, &SoughtOrderPanel::search);
    connect(searchBar_, &OrderSearchBar::branchChosen, this,
            [this](int index) { finder_->chooseBranch(searchBar_->branchId(index)); });
}

void SoughtOrderPanel::open()
{
    finder_->open();
}

void SoughtOrderPanel::cancel()
{
    daySearch_.cancel();
    finder_->cancel();
}

void SoughtOrderPanel::search()
{
    searchesNext_ = !branch_.isConfirmed();
    if (searchesNext_)
        finder_->confirmBranch();
    else
        finder_->search();
}

void SoughtOrderPanel::seekDays(const QVector<QDate> &days)
{
    days_ = days;
    if (!days.isEmpty() && branch_.isConfirmed())
        daySearch_.start(days, branch_.identity(),
                         {branch_.identity().shopId, branch_.publicPath()});
}

void SoughtOrderPanel::takeDays(const soughtorders::Found &found)
{
    if (found.orders.isEmpty())
        return;
    orders_.setOrders(found.orders);
    table_->selectAll();
    showSelected();
}

void SoughtOrderPanel::take(const soughtorders::Found &found)
{
    // What was selected stays listed, whatever is searched for next.
    const QVector<soughtorders::Order> kept = selected();
    daySearch_.cancel();
    orders_.setOrders(soughtorders::joined(kept, found.orders));
    for (const soughtorders::Order &order : kept)
        selectAlso(orders_.rowOf(order.identity()));
    showSelected();
}

void SoughtOrderPanel::selectAlso(int position)
{
    for (int row = 0; row < table_->model()->rowCount(); ++row) {
        if (rows_->position(row) == position) {
            table_->selectionModel()->select(table_->model()->index(row, 0),
                                             QItemSelectionModel::Select |
                                                 QItemSelectionModel::Rows);
        }
    }
}

QVector<soughtorders::Order> SoughtOrderPanel::selected() const
{
    QVector<soughtorders::Order> orders;
    const auto rows = table_->selectionModel()->selectedRows();
    for (const QModelIndex &row : rows) {
        const int position = rows_->position(row.row());
        if (orders_.hasRow(position))
            orders.append(orders_.order(position));
    }
    return orders;
}

void SoughtOrderPanel::showSelected()
{
    const int count = table_->selectionModel()->selectedRows().size();
    selected_->setText(count == 0
                           ? QStringLiteral("没有选中订单：只核对本机导入过的文件")
                           : QStringLiteral("已选中 %1 个订单（Ctrl 或 Shift 多选）").arg(count));
    emit selectionChanged();
}
