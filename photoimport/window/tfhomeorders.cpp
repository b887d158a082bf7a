#include "photoimport/window/tfhomeorders.h"

#include "app/context/logging.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/window/tfhomeorders_orderlistwidget.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/orders/orderfinder.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QDebug>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QString importingText()
{
    return QStringLiteral("导片中...");
}

} // namespace

tfhomeorders::tfhomeorders(tforderlistmodel *model, QWidget *parent)
    : QWidget(parent)
    , model_(model)
    , searchBar_(new OrderSearchBar(this))
    , table_(new tfhomeorders_OrderListWidget(model, this))
    , finder_(new OrderFinder(this, {&branch_, searchBar_, table_, new LoadingOverlay(table_)}))
{
    searchBar_->addPersonFilter();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(searchBar_);
    layout->addWidget(table_, 1);
    connectParts();
}

void tfhomeorders::connectParts()
{
    connect(searchBar_, &OrderSearchBar::searchRequested, this, &tfhomeorders::onSearchClicked);
    connect(searchBar_, &OrderSearchBar::branchChosen, this, &tfhomeorders::onBranchChosen);
    finder_->setLeaving({[this] { return importing_ ? importingText() : QString(); },
                         [this] { return leavingQuestion(); }});
    finder_->setSelect(
        [this](const QString &photoSet) { return table_->selectPhotoSet(photoSet); });
    connect(finder_, &OrderFinder::branchLeft, this, &tfhomeorders::onBranchLeft);
    connect(finder_, &OrderFinder::branchSwitched, this, &tfhomeorders::onBranchSwitched);
    finder_->setReader(&photoorders::readOrders,
                       [this](const photoorders::FoundOrders &found, OrderFinder::Search search) {
                           takeOrders(found, search);
                       });
}

void tfhomeorders::open()
{
    finder_->open();
}

void tfhomeorders::abandon()
{
    finder_->cancel();
}

void tfhomeorders::setImporting(bool importing)
{
    if (importing && !importing_) {
        abandon(); // a reply that comes now must not replace the orders under the run
        finder_->showBranch();
    }
    importing_ = importing;
}

// Branches.

void tfhomeorders::onBranchChosen(int index)
{
    finder_->chooseBranch(searchBar_->branchId(index));
}

QString tfhomeorders::leavingQuestion() const
{
    const auto &orders = model_->orders();
    if (std::none_of(orders.cbegin(), orders.cend(),
                     [](const PhotoOrder &order) { return order.hasUnfinishedFiles(); }))
        return {};
    return QStringLiteral(
        "切换分店会清空已添加但还没有导入的照片列表，它们只保留在提示栏中，确认要切换吗？");
}

void tfhomeorders::onBranchLeft()
{
    table_->keepPlaceWhile([this] { model_->setOrders({}); });
    emit ordersChanged();
}

void tfhomeorders::onBranchSwitched()
{
    branch_.listPersons();
    emit changeShop(orderqueries::switchedShopMap(branch_.identity()));
    finder_->search();
}

// Searching.

void tfhomeorders::onSearchClicked()
{
    if (importing_)
        MessageBox::warning(this, importingText());
    else if (branch_.isConfirmed())
        finder_->search();
    else
        finder_->confirmBranch(); // when that succeeds a search follows
}

void tfhomeorders::refreshImportCounts()
{
    if (!importing_ && finder_->refresh())
        qCDebug(lcTessavo) << "刷新导入数量";
}

void tfhomeorders::takeOrders(const photoorders::FoundOrders &found, OrderFinder::Search search)
{
    if (search == OrderFinder::Search::Refresh)
        model_->refreshInfo(found.orders);
    else
        table_->keepPlaceWhile(
            [&] { model_->setOrders(photoorders::merged(model_->orders(), found.orders)); });
    emit ordersChanged();
}
