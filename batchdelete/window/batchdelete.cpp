#include "batchdelete/window/batchdelete.h"

#include "batchdelete/rules/deletionrules.h"
#include "batchdelete/run/deletiontexts.h"
#include "batchdelete/run/unreporteddeletions.h"
#include "batchdelete/window/batchdelete_filelistwidget.h"
#include "batchdelete/window/batchdelete_orderlistwidget.h"
#include "batchdelete/window/batchdelete_runbar.h"
#include "batchdelete/window/deletionapproval.h"
#include "batchdelete/window/deletionquestions.h"
#include "ledger/ledger.h"
#include "pending/pendingbar.h"
#include "tasks/background.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/noticebar.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/orders/orderfinder.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/tables/frozentable.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/sharedwidth.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QVBoxLayout>

namespace {

// How the window's width is divided.
constexpr int ordersShare = 8;
constexpr int filesShare = 5;

QString deletingText()
{
    return QStringLiteral("删除中...");
}

QString noPermissionText()
{
    return QStringLiteral("暂无权限操作批量删除");
}

} // namespace

BatchDelete::BatchDelete(QWidget *parent)
    : FramelessWindow(parent)
    , searchBar_(new OrderSearchBar(this))
    , notices_(new NoticeBar(this))
    , pending_(new PendingBar(this, notices_))
    , unreported_(new UnreportedDeletions(this))
    , runBar_(new BatchDelete_RunBar(&orders_, &run_, this))
    , orderList_(new BatchDelete_OrderListWidget(&orders_))
    , fileList_(new BatchDelete_FileListWidget)
    , finder_(
          new OrderFinder(this, {&branch_, searchBar_, orderList_->table(), orderList_->overlay()}))
{
    qRegisterMetaType<BatchDeleteOrderInfo>();
    setWindowTitle(QStringLiteral("批量删除"));
    buildLayout();
    approval_ = new DeletionApproval(this, &orders_);
    connect(approval_, &DeletionApproval::approved, this, &BatchDelete::startRun);
    connect(&folderOpener_, &SharedFolderOpener::finished, this,
            [this](bool, const QString &error) {
                if (!error.isEmpty())
                    Toast::show(this, error);
            });
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
    connectLists();
    connectRun();
    connectUnreported();
    showRunState();
}

BatchDelete::~BatchDelete()
{
    // What shows them outlives the models and the run by a moment.
    disconnect(orderList_, nullptr, this, nullptr);
    run_.disconnect();
}

void BatchDelete::buildLayout()
{
    searchBar_->searchByCompletion(QStringLiteral("搜索订单号、姓名、电话、微信..."));
    searchBar_->captionBranches(QStringLiteral("分店选择:"));
    searchBar_->addPersonFilter();
    halves_ = new SharedWidth(orderList_, fileList_, [](int width) {
        return width * ordersShare / (ordersShare + filesShare);
    });

    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    const int margin = theme::margin();
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(theme::spacing());
    layout->addWidget(searchBar_);
    layout->addWidget(runBar_);
    layout->addWidget(notices_);
    layout->addWidget(halves_, 1);
    setContent(content);
}

void BatchDelete::connectLists()
{
    connect(searchBar_, &OrderSearchBar::searchRequested, this, &BatchDelete::onSearchClick);
    connect(searchBar_, &OrderSearchBar::searchTypeChanged, this,
            &BatchDelete::onSearchTypeChanged);
    connect(searchBar_, &OrderSearchBar::branchChosen, this,
            &BatchDelete::onBranchSelectionChanged);
    finder_->setLeaving({[this] { return run_.isBusy() ? deletingText() : QString(); },
                         [this] {
                             return orders_.unreported() == 0
                                        ? QString()
                                        : unreportedQuestion(deletiontexts::Leaving::Branch);
                         }});
    connect(finder_, &OrderFinder::branchLeft, this, &BatchDelete::onBranchLeft);
    connect(finder_, &OrderFinder::branchSwitched, this, &BatchDelete::onBranchSwitched);
    finder_->setReader(&deletionrequests::readOrders,
                       [this](const deletionrequests::FoundOrders &list, OrderFinder::Search) {
                           orderList_->keepPlaceWhile(
                               [&] { orders_.setOrders(list.orders, list.unlisted); });
                       });

    connect(orderList_, &BatchDelete_OrderListWidget::orderSelectionChanged, this,
            &BatchDelete::onOrderSelectionChanged);
    connect(orderList_, &BatchDelete_OrderListWidget::singleOrderClicked, this,
            &BatchDelete::showOrder);
    connect(orderList_, &BatchDelete_OrderListWidget::viewClicked, this,
            &BatchDelete::onViewClicked);
    connect(orderList_, &BatchDelete_OrderListWidget::openFolderClicked, this,
            [this](int row) { folderOpener_.open(orders_.order(row).netPath); });
    connect(orderList_, &BatchDelete_OrderListWidget::copyNumberClicked, this, [this](int row) {
        QGuiApplication::clipboard()->setText(orders_.order(row).displayNumber());
        Toast::show(this, QStringLiteral("订单号已复制"));
    });
    connect(fileList_, &BatchDelete_FileListWidget::retrySubmitClicked, this,
            [this](int index) { retryFiles({index}); });
    connect(fileList_, &BatchDelete_FileListWidget::retryDeleteClicked, this,
            [this](int index) { retryFiles({index}); });
    connect(fileList_, &BatchDelete_FileListWidget::retryClicked, this, &BatchDelete::retryFiles);
    connect(fileList_, &BatchDelete_FileListWidget::refreshOrderFiles, this,
            &BatchDelete::onRefreshOrderFiles);
    connect(fileList_, &BatchDelete_FileListWidget::scanned, this, &BatchDelete::onFilesScanned);
    connect(fileList_, &BatchDelete_FileListWidget::scanFailed, this, &BatchDelete::onScanFailed);
    connect(runBar_, &BatchDelete_RunBar::workChanged, this,
            [this](const WorkProgress &work) { setWork(work); });
    connect(runBar_, &BatchDelete_RunBar::startClicked, this, &BatchDelete::onStartBatchDelete);
}

void BatchDelete::connectRun()
{
    connect(&run_, &BatchDeleteRun::orderStarted, this, &BatchDelete::onOrderStarted);
    connect(&run_, &BatchDeleteRun::orderNoted, this, &BatchDelete::onOrderNoted);
    connect(&run_, &BatchDeleteRun::orderDone, this, &BatchDelete::onOrderDone);
    connect(&run_, &BatchDeleteRun::filesListed, this,
            [this](const OrderIdentity &orderId, const QVector<BatchDeleteFileInfo> &files) {
                setFiles(orderId, files);
                showRunState();
            });
    connect(&run_, &BatchDeleteRun::fileChanged, this, &BatchDelete::onFileChanged);
    connect(&run_, &BatchDeleteRun::finished, this, &BatchDelete::showRunState);
    questions_ = new DeletionQuestions(this, &run_);
    connect(&run_, &BatchDeleteRun::ended, this, [this] {
        showRunState();
        if (isClosingLater())
            finishClosing();
    });
}

void BatchDelete::showEvent(QShowEvent *event)
{
    FramelessWindow::showEvent(event);
    if (!opened_) {
        opened_ = true;
        orderList_->openColumns();
        halves_->open(QStringLiteral("batchdelete"));
        reqShopInfo();
    }
}

FramelessWindow::CloseAnswer BatchDelete::closeRequested()
{
    if (orders_.unreported() > 0 &&
        !agreedToClose(unreportedQuestion(deletiontexts::Leaving::Window)))
        return CloseAnswer::Refuse;
    questions_->fallSilent();
    finder_->cancel();
    approval_->cancel();
    run_.close();
    return run_.isBusy() ? CloseAnswer::CloseLater : CloseAnswer::Close;
}

// Branch and order search.

void BatchDelete::reqShopInfo()
{
    finder_->open();
}

void BatchDelete::onBranchSelectionChanged(int index)
{
    finder_->chooseBranch(searchBar_->branchId(index));
}

void BatchDelete::onBranchLeft()
{
    approval_->cancel();
    orders_.clear();
    fileList_->clear();
}

void BatchDelete::onBranchSwitched()
{
    switchedRoots_.append(branch_.publicPath());
    pending_->setBranch(branch_.identity().shopId);
    unreported_->refresh();
    emit changeShop(orderqueries::switchedShopMap(branch_.identity()));
    const bool permitted = branch_.mayDeleteAllPhotos();
    orderList_->setEnabled(permitted);
    fileList_->setEnabled(permitted);
    if (!permitted) {
        orderList_->table()->setEmptyText(noPermissionText());
        Toast::show(this, noPermissionText());
        return;
    }
    branch_.listPersons();
    reqOrderList();
}

void BatchDelete::onSearchTypeChanged(int type)
{
    Q_UNUSED(type) // the search bar shows the field that the type needs
}

void BatchDelete::onSearchClick()
{
    if (run_.isBusy()) {
        MessageBox::warning(this, deletingText());
    } else if (!branch_.isConfirmed()) {
        finder_->confirmBranch(); // when that succeeds a search follows
    } else if (!branch_.mayDeleteAllPhotos()) {
        Toast::show(this, noPermissionText());
    } else {
        reqOrderList();
    }
}

void BatchDelete::connectUnreported()
{
    connect(unreported_, &UnreportedDeletions::changed, this, &BatchDelete::countUnreported);
    connect(unreported_, &UnreportedDeletions::finished, this,
            [this](const QString &text) { MessageBox::information(this, text); });
    connect(pending_, &PendingBar::taken, this,
            [this](pendinglines::Kind, pendinglines::Offer offer, const QString &branch) {
                if (offer == pendinglines::Offer::SwitchBranch)
                    finder_->chooseBranch(branch);
                else if (offer == pendinglines::Offer::Ignore)
                    unreported_->dismiss(branch);
                else if (mayDelete())
                    unreported_->report(branch_.identity());
            });
}

void BatchDelete::countUnreported()
{
    QVector<pendinglines::Count> counts;
    for (const ShopRecord &shop : qAsConst(AccountContext::shopList)) {
        const int files = unreported_->of(shop.id).size();
        counts.append({pendinglines::Kind::UnreportedFiles, shop.id, 0, files});
    }
    pending_->setCounts(pendinglines::Kind::UnreportedFiles, counts);
}

void BatchDelete::reqOrderList()
{
    finder_->search();
}

QString BatchDelete::unreportedQuestion(deletiontexts::Leaving leaving) const
{
    return deletiontexts::unreportedQuestion(orders_.unreported(), leaving,
                                             Ledger::current().isKept());
}

// What the lists do.

void BatchDelete::onOrderSelectionChanged(const QList<BatchDeleteOrderInfo> &orders)
{
    runBar_->showChecked(orders.size());
}

void BatchDelete::showOrder(const BatchDeleteOrderInfo &order)
{
    const bool isAtWork = run_.isAt(order.identity());
    if (order.identity().isEmpty())
        fileList_->clear();
    else if (isAtWork && run_.isLooking() && order.files().isEmpty())
        fileList_->showSearch(order);
    else if (isAtWork || (order.processed && !order.outdated && !order.files().isEmpty()))
        fileList_->showFiles(order, order.files());
    else
        scan(order);
}

/// Where nothing may be deleted there may be a whole disk to read.
void BatchDelete::scan(const BatchDeleteOrderInfo &order)
{
    const QString refusal = deletionrules::folderRefusal(order.netPath, publicRoots());
    if (refusal.isEmpty())
        fileList_->scan(order);
    else
        fileList_->showProblem(order, order.files(), QStringLiteral("不可删除"), refusal);
}

void BatchDelete::onRefreshOrderFiles()
{
    const int row = orders_.rowOf(fileList_->orderId());
    if (row < 0)
        return;
    if (run_.isAt(orders_.order(row).identity()))
        Toast::show(this, deletingText()); // the run keeps this list up to date
    else
        scan(orders_.order(row));
}

void BatchDelete::onFilesScanned(const BatchDeleteOrderInfo &order,
                                 const QVector<BatchDeleteFileInfo> &files)
{
    const int row = orders_.rowOf(order.identity());
    if (row < 0)
        return;
    // Of a mere list only the count is kept: there may be a million files, and hundreds of orders.
    if (!orders_.order(row).processed) {
        orders_.change(row, [&files](BatchDeleteOrderInfo &shown) { shown.listed = files.size(); });
        return;
    }
    const QVector<BatchDeleteFileInfo> before = orders_.order(row).files();
    onProcessor(
        this, [before, files] { return deletionrules::merged(before, files); },
        [this, id = order.identity(), before](const QVector<BatchDeleteFileInfo> &all) {
            const int shown = orders_.rowOf(id);
            if (shown < 0)
                return;
            // Whatever is being deleted keeps its place in its order's list, and what became of
            // files meanwhile its state.
            const QVector<BatchDeleteFileInfo> now = orders_.order(shown).files();
            setFiles(id, run_.isAt(id) || !now.isSharedWith(before) ? now : all);
        });
}

void BatchDelete::onScanFailed(const BatchDeleteOrderInfo &order, const QString &problem,
                               const QString &reason)
{
    const int row = orders_.rowOf(order.identity());
    if (row < 0)
        return;
    orders_.change(row, [](BatchDeleteOrderInfo &shown) { shown.listed = 0; });
    // What is gone unreported stays in reach.
    fileList_->showProblem(orders_.order(row), orders_.order(row).files(), problem, reason);
}

void BatchDelete::setFiles(const OrderIdentity &orderId, const QVector<BatchDeleteFileInfo> &files)
{
    const int row = orders_.rowOf(orderId);
    orders_.change(row, [&files](BatchDeleteOrderInfo &order) {
        order.setFiles(files);
        order.outdated = false;
    });
    if (row < 0 || orderId != fileList_->orderId())
        return;
    if (files.isEmpty() && run_.isAt(orderId) && run_.isLooking())
        fileList_->showSearch(orders_.order(row));
    else
        fileList_->showFiles(orders_.order(row), files);
}

void BatchDelete::onViewClicked(int row, BatchDeleteProgressDelegate::Button button)
{
    if (!orders_.hasRow(row))
        return;
    const BatchDeleteOrderInfo &order = orders_.order(row);
    if (button == BatchDeleteProgressDelegate::ViewSucceeded)
        MessageBox::information(this, deletiontexts::succeededList(order));
    else
        MessageBox::warning(this, deletiontexts::failedList(order));
}

void BatchDelete::retryFiles(const QVector<int> &indexes)
{
    const int row = orders_.rowOf(fileList_->orderId());
    if (row < 0 || !mayDelete())
        return;
    if (run_.isBusy())
        Toast::show(this, deletingText());
    else if (searchBar_->isBusy()) // the answer may replace the order under the retry
        Toast::show(this, QStringLiteral("正在查询订单..."));
    else if (!run_.retry(orders_.order(row), indexes, branch_.identity(), publicRoots()) &&
             orders_.order(row).hasChanged(indexes))
        Toast::show(this, QStringLiteral("文件已变化，请先刷新"));
    showRunState();
}

/// What other branches hold counts as well: an order's path is what somebody typed.
QStringList BatchDelete::publicRoots() const
{
    QStringList roots{branch_.publicPath()};
    roots += switchedRoots_;
    for (const ShopRecord &shop : qAsConst(AccountContext::shopList))
        roots.append(shop.importPublicPath);
    roots.removeDuplicates();
    return roots;
}

bool BatchDelete::mayDelete()
{
    if (!branch_.isConfirmed() || !branch_.mayDeleteAllPhotos()) {
        Toast::show(this, QStringLiteral("暂无权限操作"));
        return false;
    }
    return true;
}

// The deletion.

void BatchDelete::onStartBatchDelete()
{
    if (run_.isRunning()) {
        run_.stop();
        showRunState();
        return;
    }
    if (!mayDelete())
        return;
    if (orders_.checkedOrders().isEmpty()) {
        Toast::show(this, QStringLiteral("请选择要删除的订单!"));
        return;
    }
    if (run_.isBusy()) {
        Toast::show(this, deletingText());
        return;
    }
    // A reply that comes now must not replace the orders that are being judged.
    finder_->cancel();
    finder_->showBranch();
    approval_->ask(branch_.identity().shopId, publicRoots());
}

void BatchDelete::startRun(const QVector<BatchDeleteOrderInfo> &orders)
{
    atWork_ = {};
    run_.start(orders, branch_.identity(), publicRoots());
    showRunState();
}

/// The list of files goes along, unless the user has turned to another order meanwhile.
void BatchDelete::onOrderStarted(const OrderIdentity &orderId)
{
    const int row = orders_.rowOf(orderId);
    orders_.change(row, [](BatchDeleteOrderInfo &order) {
        order.note.clear();
        order.processed = true;
        order.listed = 0;
    });
    if (atWork_.isEmpty() || fileList_->orderId() == atWork_) {
        orderList_->selectRow(row);
        atWork_ = orderId;
    }
}

void BatchDelete::onOrderNoted(const OrderIdentity &orderId, const QString &note)
{
    const int row = orders_.rowOf(orderId);
    orders_.change(row, [&note](BatchDeleteOrderInfo &order) { order.note = note; });
    if (row >= 0 && orderId == fileList_->orderId() && orders_.order(row).files().isEmpty())
        fileList_->showProblem(orders_.order(row), {}, QStringLiteral("没有删除"), note);
}

/// An order that is dealt with loses its tick: pressed once more, the button must not begin with it
/// again. One with files left keeps it.
void BatchDelete::onOrderDone(const OrderIdentity &orderId)
{
    const int row = orders_.rowOf(orderId);
    if (row >= 0 && !orders_.order(row).hasFilesLeft())
        orders_.uncheck(row);
}

void BatchDelete::onFileChanged(const OrderIdentity &orderId, int index,
                                const BatchDeleteFileInfo &file)
{
    orders_.setFile(orders_.rowOf(orderId), index, file);
    if (orderId == fileList_->orderId())
        fileList_->setFile(index, file);
}

void BatchDelete::showRunState()
{
    orderList_->setCheckable(!run_.isRunning());
    runBar_->showRunState();
}
