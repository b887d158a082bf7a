#include "widgets/orders/orderfinder.h"

#include "app/context/accountcontext.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/titlebar.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/tables/tables.h"
#include "widgets/windows/framelesswindow.h"
#include "widgets/windows/loadingoverlay.h"

OrderFinder::OrderFinder(QWidget *window, const Place &place)
    : QObject(window), window_(window), place_(place)
{
    BranchSession *branch = place_.branch;
    connect(branch, &BranchSession::switched, this, &OrderFinder::onSwitched);
    connect(branch, &BranchSession::switchFailed, this, &OrderFinder::onSwitchFailed);
    connect(branch, &BranchSession::searched, this, &OrderFinder::onSearched);
    connect(branch, &BranchSession::personsListed, place_.bar, &OrderSearchBar::setPersons);
    connect(branch, &BranchSession::personsFailed, this, [this](const ServiceReply &reply) {
        showServiceFailure(window_, reply, reply.message);
    });
    connect(place_.overlay, &LoadingOverlay::cancelled, this, [this] {
        cancel();
        keepBranch();
    });
}

// Branches.

void OrderFinder::open()
{
    place_.bar->setBranches(AccountContext::shopList, place_.branch->identity().shopId);
    titleBranch();
    confirmBranch();
}

void OrderFinder::chooseBranch(const QString &shopId)
{
    wanted_.reset();
    ifMayLeave([this, shopId] { leaveFor(shopId); });
}

void OrderFinder::goTo(const OrderPlace &place)
{
    wanted_.reset();
    if (place.branch != place_.branch->identity().shopId) {
        ifMayLeave([this, place] {
            leaveFor(place.branch);
            wanted_ = place;
        });
        return;
    }
    const QString refused = refusal();
    if (!refused.isEmpty()) {
        MessageBox::warning(window_, refused);
        return;
    }
    const bool isSwitching = place_.bar->isBusy() && !place_.branch->isConfirmed();
    if (!place_.branch->isConfirmed() && !isSwitching)
        confirmBranch();
    if (place_.branch->isConfirmed()) {
        cancel(); // a switch to another branch among it
        showBranch();
    }
    wanted_ = place;
    if (place_.branch->isConfirmed()) {
        place_.bar->showKeyword(place.number);
        emit place_.bar->searchRequested();
    }
}

void OrderFinder::ifMayLeave(const std::function<void()> &leave)
{
    const QString refused = refusal();
    if (!refused.isEmpty()) {
        showBranch();
        MessageBox::warning(window_, refused);
        return;
    }
    const QString question = leaving_.question ? leaving_.question() : QString();
    if (question.isEmpty()) {
        leave();
        return;
    }
    ConfirmDialog::ask(window_, question, ConfirmDialog::Enter::Cancels,
                       [this, leave](bool agreed) {
                           if (agreed && refusal().isEmpty())
                               leave();
                           else
                               showBranch();
                       });
}

void OrderFinder::leaveFor(const QString &shopId)
{
    AccountContext::selectedShopId = shopId;
    switchTo(shopId);
}

void OrderFinder::confirmBranch()
{
    const QString &branch = place_.branch->identity().shopId;
    switchTo(branch.isEmpty() ? place_.bar->selectedBranchId() : branch);
}

void OrderFinder::switchTo(const QString &shopId)
{
    endSearch();
    setBusy(true);
    place_.overlay->showText(QStringLiteral("正在切换分店..."));
    place_.branch->switchTo(shopId);
}

void OrderFinder::onSwitched()
{
    endSearch();
    showBranch();
    if (!ways_.keepsKeyword)
        place_.bar->resetKeyword();
    const QString &branch = place_.branch->identity().shopId;
    if (listedBranch_ != branch) {
        listedBranch_ = branch;
        place_.bar->setPersons({});
        // Should the search that follows fail, or be cancelled, this is what is left.
        place_.table->setEmptyText(QStringLiteral("请重新搜索"));
        emit branchLeft();
    }
    if (wanted_)
        place_.bar->showKeyword(wanted_->number);
    emit branchSwitched();
    // A tool that repeats a search of its own is asked for this one.
    if (wanted_ && ways_.keepsKeyword)
        emit place_.bar->searchRequested();
}

void OrderFinder::onSwitchFailed(const ServiceReply &reply, const QString &refusal)
{
    wanted_.reset();
    endSearch();
    keepBranch();
    place_.table->setEmptyText(QStringLiteral("分店未切换，请重新搜索或选择分店"));
    const QString &told = reply.*ways_.refusal;
    showServiceFailure(window_, reply, reply.isSuccess() || told.isEmpty() ? refusal : told);
}

void OrderFinder::showBranch()
{
    place_.bar->selectBranch(place_.branch->identity().shopId);
    titleBranch();
}

void OrderFinder::titleBranch()
{
    if (const auto *window = qobject_cast<FramelessWindow *>(window_->window()))
        window->titleBar()->setBranch(AccountContext::shopName(place_.branch->identity().shopId));
}

void OrderFinder::keepBranch()
{
    // Tools opened later are not to begin in a branch that was refused here.
    AccountContext::selectedShopId = place_.branch->identity().shopId;
    showBranch();
}

// Searching.

void OrderFinder::search()
{
    endSearch();
    setBusy(true);
    place_.overlay->showText(QStringLiteral("正在查询订单..."));
    lastSearch_ = place_.bar->search();
    lastPerson_ = place_.bar->personId();
    if (wanted_ && (lastSearch_.type != orderqueries::OrderSearch::BasicInformation ||
                    lastSearch_.text != wanted_->number))
        wanted_.reset(); // the user looks for something else by now
    if (ways_.search)
        ways_.search();
    else
        place_.branch->search(lastSearch_, lastPerson_);
}

bool OrderFinder::refresh()
{
    // A search under way brings what is wanted.
    if (place_.bar->isBusy() || !place_.branch->isConfirmed())
        return false;
    refreshing_ = true;
    place_.branch->search(lastSearch_, lastPerson_);
    return true;
}

void OrderFinder::onSearched(const ServiceReply &reply)
{
    const bool refresh = std::exchange(refreshing_, false);
    if (refresh) {
        if (reply.isSuccess() && refusal().isEmpty())
            take_(reply.made, Search::Refresh);
        return; // what is wrong the next search tells
    }
    endSearch();
    if (reply.isSuccess()) {
        take_(reply.made, Search::Asked);
        return;
    }
    wanted_.reset();
    place_.table->setEmptyText(QStringLiteral("查询失败，请重新搜索"));
    showServiceFailure(window_, reply, reply.message);
}

void OrderFinder::tellFound(int elements, int orders)
{
    const QString nothingFound = QStringLiteral("未检索到订单");
    place_.table->setEmptyText(nothingFound);
    if (elements == 0)
        MessageBox::warning(window_, nothingFound);
    else if (orders == 0)
        Toast::show(window_, QStringLiteral("未搜到订单!"));
    const auto wanted = std::exchange(wanted_, std::nullopt);
    const bool isThere = wanted && select_ && select_(wanted->orderPhotoId);
    if (wanted && !isThere && elements > 0)
        MessageBox::warning(window_, nothingFound);
}

void OrderFinder::cancel()
{
    wanted_.reset();
    place_.branch->cancel();
    endSearch();
}

void OrderFinder::endSearch()
{
    place_.branch->cancelSearch();
    refreshing_ = false;
    setBusy(false);
    place_.overlay->hideOverlay();
}

void OrderFinder::setBusy(bool busy)
{
    place_.bar->setBusy(busy);
    emit busyChanged(busy);
}
