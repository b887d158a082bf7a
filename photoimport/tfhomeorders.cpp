#include "photoimport/tfhomeorders.h"

#include "app/context/logging.h"
#include "net/background.h"
#include "photoimport/tfhomeorders_orderlistwidget.h"
#include "photoimport/tforderlistmodel.h"
#include "widgets/confirmdialog.h"
#include "widgets/loadingoverlay.h"
#include "widgets/messagebox.h"
#include "widgets/ordersearchbar.h"
#include "widgets/servicenotice.h"
#include "widgets/theme.h"
#include "widgets/toast.h"

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
    , overlay_(new LoadingOverlay(table_))
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
    connect(overlay_, &LoadingOverlay::cancelled, this, [this] {
        abandon();
        keepBranch();
    });
    connect(&branch_, &BranchSession::switched, this, &tfhomeorders::onBranchSwitched);
    connect(&branch_, &BranchSession::switchFailed, this,
            [this](const ServiceReply &reply, const QString &refusal) {
                endSearch();
                keepBranch();
                table_->setEmptyText(QStringLiteral("分店未切换，请重新搜索或选择分店"));
                showServiceFailure(this, reply, refusal);
            });
    connect(&branch_, &BranchSession::personsListed, searchBar_, &OrderSearchBar::setPersons);
    connect(&branch_, &BranchSession::personsFailed, this,
            [this](const ServiceReply &reply) { showServiceFailure(this, reply, reply.message); });
    connect(&branch_, &BranchSession::searched, this, &tfhomeorders::onOrderList);
}

void tfhomeorders::open()
{
    searchBar_->setBranches(AccountContext::shopList, branch_.identity().shopId);
    switchToBranch(branch_.identity().shopId);
}

void tfhomeorders::abandon()
{
    branch_.cancel();
    endSearch();
}

void tfhomeorders::setImporting(bool importing)
{
    if (importing && !importing_) {
        abandon(); // a reply that comes now must not replace the orders under the run
        searchBar_->selectBranch(branch_.identity().shopId);
    }
    importing_ = importing;
}

// Branches.

void tfhomeorders::onBranchChosen(int index)
{
    const QString shopId = searchBar_->branchId(index);
    if (importing_) {
        searchBar_->selectBranch(branch_.identity().shopId);
        MessageBox::warning(this, importingText());
        return;
    }
    const auto &orders = model_->orders();
    const bool unfinished =
        std::any_of(orders.cbegin(), orders.cend(),
                    [](const PhotoOrder &order) { return order.hasUnfinishedFiles(); });
    if (unfinished &&
        !ConfirmDialog::ask(this,
                            QStringLiteral("切换分店会清空已添加但还没有导入的照片列表，"
                                           "确认要切换吗？"),
                            ConfirmDialog::Enter::Cancels)) {
        searchBar_->selectBranch(branch_.identity().shopId);
        return;
    }
    AccountContext::selectedShopId = shopId;
    switchToBranch(shopId);
}

void tfhomeorders::switchToBranch(const QString &shopId)
{
    endSearch();
    searchBar_->setBusy(true);
    overlay_->showText(QStringLiteral("正在切换分店..."));
    branch_.switchTo(shopId);
}

void tfhomeorders::onBranchSwitched()
{
    searchBar_->selectBranch(branch_.identity().shopId);
    searchBar_->resetKeyword();
    searchBar_->setPersons({}); // those of the other branch
    branch_.listPersons();
    if (listedShop_ != identity().shopId) {
        // What was chosen in another branch cannot be registered in this one's name.
        listedShop_ = identity().shopId;
        table_->keepPlaceWhile([this] { model_->setOrders({}); });
        emit ordersChanged();
    }
    emit changeShop(orderqueries::switchedShopMap(branch_.identity()));
    reqOrderList();
}

void tfhomeorders::keepBranch()
{
    // Tools opened later are not to begin in a branch that was refused here.
    AccountContext::selectedShopId = branch_.identity().shopId;
    searchBar_->selectBranch(branch_.identity().shopId);
}

// Searching.

void tfhomeorders::onSearchClicked()
{
    if (importing_)
        MessageBox::warning(this, importingText());
    else if (branch_.isConfirmed())
        reqOrderList();
    else // the switch at opening failed, or was cancelled; when it succeeds a search follows
        switchToBranch(branch_.identity().shopId);
}

void tfhomeorders::reqOrderList()
{
    endSearch();
    searchBar_->setBusy(true);
    overlay_->showText(QStringLiteral("正在查询订单..."));
    lastSearch_ = searchBar_->search();
    lastPerson_ = searchBar_->personId();
    branch_.search(lastSearch_, lastPerson_);
}

void tfhomeorders::refreshImportCounts()
{
    // A search under way brings what is wanted.
    if (importing_ || searchBar_->isBusy() || !branch_.isConfirmed())
        return;
    qCDebug(lcTessavo) << "刷新导入数量";
    refreshing_ = true;
    branch_.search(lastSearch_, lastPerson_);
}

void tfhomeorders::onOrderList(const ServiceReply &reply)
{
    if (refreshing_) {
        refreshing_ = false;
        takeRefreshed(reply);
        return;
    }
    if (!reply.isSuccess()) {
        endSearch();
        table_->setEmptyText(QStringLiteral("查询失败，请重新搜索"));
        showServiceFailure(this, reply, reply.message);
        return;
    }
    inBackground(
        this,
        [object = reply.object, publicPath = branch_.publicPath()] {
            return photoorders::readOrders(object, publicPath);
        },
        [this, search = search_](const photoorders::Found &found) {
            if (search == search_)
                takeOrders(found);
        });
}

void tfhomeorders::takeOrders(const photoorders::Found &found)
{
    endSearch();
    const QString nothingFound = QStringLiteral("未检索到订单");
    table_->setEmptyText(nothingFound);
    if (found.isList) {
        table_->keepPlaceWhile(
            [&] { model_->setOrders(photoorders::merged(model_->orders(), found.orders)); });
        emit ordersChanged();
    }
    if (found.elements == 0)
        MessageBox::warning(this, nothingFound);
    else if (found.orders.isEmpty())
        Toast::show(this, QStringLiteral("未搜到订单!"));
}

void tfhomeorders::takeRefreshed(const ServiceReply &reply)
{
    if (!reply.isSuccess())
        return; // silent: the next search tells what is wrong
    inBackground(
        this,
        [object = reply.object, publicPath = branch_.publicPath()] {
            return photoorders::readOrders(object, publicPath);
        },
        [this, search = search_](const photoorders::Found &found) {
            if (search != search_ || importing_)
                return;
            model_->refreshInfo(found.orders);
            emit ordersChanged();
        });
}

void tfhomeorders::endSearch()
{
    branch_.cancelSearch();
    refreshing_ = false;
    ++search_; // a list that is still being read is not wanted any more
    searchBar_->setBusy(false);
    overlay_->hideOverlay();
}
