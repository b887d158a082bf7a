#include "distribution/window/fjhome.h"

#include "distribution/proof/prooftext.h"
#include "distribution/ruleeditor/namingrulepanel.h"
#include "distribution/rules/distributionrequests.h"
#include "distribution/run/fjdataoperate.h"
#include "distribution/window/fjleftpanel.h"
#include "distribution/window/fjrightpanel.h"
#include "distribution/window/proofpanel.h"
#include "look/colours.h"
#include "tasks/background.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/frame/titlebar.h"
#include "widgets/orders/orderfinder.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/sharedwidth.h"

#include <QDebug>
#include <QJsonObject>

namespace {

constexpr int closePatienceMs = 5000;
constexpr int ordersNamed = 5;

QStringList firstOf(const QStringList &orders)
{
    return orders.size() > ordersNamed
               ? orders.mid(0, ordersNamed) + QStringList(QStringLiteral("…"))
               : orders;
}

} // namespace

FJHome::FJHome(QWidget *parent)
    : FramelessWindow(parent)
    , photosCall_(this)
    , right_(new FJRightPanel)
    , left_(new FJLeftPanel(right_->searchBar()))
    , halves_(new SharedWidth(left_, right_,
                              [this](int width) { return width - right_->sizeHint().width(); }))
{
    setWindowTitle(QStringLiteral("分件工具"));
    halves_->setStyleSheet(theme::splitterStyle() +
                           QStringLiteral("QSplitter { background-color: %1; }")
                               .arg(colours::css(colours::toolBackground)));
    setContent(halves_);
    run_.setPerform(&FJDataOperate::perform);
    closeTimer_.setSingleShot(true);
    closeTimer_.setInterval(closePatienceMs);
    connect(&closeTimer_, &QTimer::timeout, this, [this] {
        qDebug() << "部分任务未能在超时时间内完成";
        run_.abandonReports();
    });
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
    connectPanels();
    connectRun();
}

FJHome::~FJHome()
{
    // The panels outlive this part of the window by a moment.
    disconnect(&run_, nullptr, this, nullptr);
    disconnect(left_, nullptr, this, nullptr);
    disconnect(right_, nullptr, this, nullptr);
}

void FJHome::setCard(const QString &card)
{
    titleBar()->setCard(card);
    type_ = splitTypeOf(card);
    left_->setListMode(listMode(type_));
    right_->setSplitType(type_);
}

void FJHome::connectPanels()
{
    connect(right_, &FJRightPanel::searchRequested, this, &FJHome::search);
    connect(right_, &FJRightPanel::shopChange, this, &FJHome::changeShop);
    connect(right_, &FJRightPanel::startProcessRequested, this, &FJHome::onStartProcessRequested);
    connect(right_, &FJRightPanel::stopProcessRequested, this, [this] {
        Toast::show(this, QStringLiteral("正在停止，等待进行中的文件完成..."));
        run_.stop();
    });
    connect(left_, &FJLeftPanel::emitReqOrderFinish, right_, &FJRightPanel::onSetSearchBtnStatus);
    connect(left_, &FJLeftPanel::userInfoChange, this, [this](const QString &shopId) {
        abandonPhotos();
        right_->namingPanel()->setIdentity(left_->identity());
        right_->showBranch(shopId);
        right_->clearPhotos();
    });
    left_->setLeavingQuestion([this] {
        return right_->namingPanel()->isUnsaved()
                   ? QStringLiteral(
                         "产品文件夹命名规则的修改还没有保存，切换分店后将丢失。\n确定要切换吗？")
                   : QString();
    });
    connect(left_, &FJLeftPanel::orderShown, this, &FJHome::getOrderInfo);
}

void FJHome::connectRun()
{
    connect(&run_, &DistributionRun::orderStarted, this,
            [this](int position, int total, const OrderData &order) {
                current_ = order;
                left_->showRunProgress(QStringLiteral("总进度 %1/%2  当前订单:%3-服务%4")
                                           .arg(QString::number(position), QString::number(total),
                                                order.orderPayForKey, order.serviceTimes));
            });
    connect(&run_, &DistributionRun::detailRead, this,
            [this](const OrderIdentity &order, const OrderDetailPtr &detail) {
                abandonPhotos();
                right_->showPhotos(order, current_.displayNumber(), *detail);
            });
    connect(&run_, &DistributionRun::progressChanged, left_, &FJLeftPanel::showProgress);
    connect(&run_, &DistributionRun::stepChanged, left_, &FJLeftPanel::showStep);
    connect(&run_, &DistributionRun::stepChanged, this, &FJHome::showSpeed);
    connect(&run_, &DistributionRun::errorAdded, left_, &FJLeftPanel::addError);
    connect(&run_, &DistributionRun::photoDownloaded, right_, &FJRightPanel::markDownloaded);
    connect(&run_, &DistributionRun::resultCounted, this, &FJHome::slt_copypicthread);
    // Boxes wait for their answer; the run must not wait inside its own signal.
    connect(&run_, &DistributionRun::finished, this, &FJHome::onRunFinished, Qt::QueuedConnection);
    connect(&run_, &DistributionRun::idle, this, &FJHome::closeWhenIdle);
    connect(left_->proofPanel(), &ProofPanel::putAwayRequested, this, &FJHome::putAway);
    connect(&oldFiles_, &OldFileRun::finished, this, &FJHome::onPutAway);
}

/// Also four times a second while the run goes on.
void FJHome::showSpeed()
{
    if (!run_.isRunning()) {
        left_->showSpeed({});
        setWork({});
        return;
    }
    const TransferProgress progress = run_.progress();
    rate_.add(clock_.elapsed(), progress);
    left_->showSpeed(progress.filesTotal > 0 ? progressText(progress, rate_) : QString());
    WorkProgress work = progress.work(WorkProgress::State::Running);
    work.share = run_.share();
    setWork(work);
}

void FJHome::closeWhenIdle()
{
    if (isClosingLater() && !run_.isBusy() && !oldFiles_.isBusy())
        finishClosing();
}

void FJHome::showEvent(QShowEvent *event)
{
    FramelessWindow::showEvent(event);
    if (opened_)
        return;
    opened_ = true;
    const QString tool = QStringLiteral("distribution%1").arg(int(type_));
    left_->openColumns(tool);
    halves_->open(tool);
    // Saved login data names no branch; the box shows the first one then.
    const QString chosen = left_->identity().shopId;
    changeShop(chosen.isEmpty() ? right_->searchBar()->selectedBranchId() : chosen);
}

FramelessWindow::CloseAnswer FJHome::closeRequested()
{
    left_->cancelRequests();
    abandonPhotos();
    run_.stop();
    if (!run_.isBusy() && !oldFiles_.isBusy())
        return CloseAnswer::Close;
    closeTimer_.start();
    return CloseAnswer::CloseLater;
}

// Branch, search, photos.

bool FJHome::refusesWhileRunning()
{
    if (run_.isRunning())
        MessageBox::warning(this, QStringLiteral("分件中..."));
    return run_.isRunning();
}

void FJHome::search(const QString &searchType, const QString &searchText)
{
    if (refusesWhileRunning())
        return;
    abandonPhotos();
    right_->clearPhotos();
    left_->reqOrderList(searchType, searchText);
}

void FJHome::goTo(const OrderPlace &place)
{
    if (!refusesWhileRunning())
        left_->finder()->goTo(place);
}

void FJHome::changeShop(const QString &shopId)
{
    if (refusesWhileRunning()) {
        right_->searchBar()->selectBranch(left_->identity().shopId);
        return;
    }
    const orderqueries::OrderSearch search = right_->searchBar()->search();
    left_->onReqShopInfo(distributionrequests::searchTypeText(search.type),
                         distributionrequests::keywordOf(search), shopId);
}

void FJHome::getOrderInfo(const OrderData &order)
{
    abandonPhotos();
    right_->clearPhotos(order.identity(), order.displayNumber());
    const auto show = [this, order](const OrderDetailPtr &detail) {
        right_->showPhotos(order.identity(), order.displayNumber(), *detail);
    };
    photosCall_.start(distributionrequests::detailAction,
                      distributionrequests::detailBody(order, left_->identity()),
                      [this, show](const ServiceReply &reply) {
                          if (reply.isSuccess()) {
                              onProcessor(
                                  this, [object = reply.object] { return detailOf(object); },
                                  photosReading_.only(show));
                          } else {
                              showServiceFailure(
                                  this, reply, reply.message.isEmpty() ? reply.msg : reply.message);
                          }
                      });
}

void FJHome::abandonPhotos()
{
    photosCall_.cancel();
    photosReading_.abandon();
}

// The run.

void FJHome::onStartProcessRequested()
{
    if (run_.isRunning() || oldFiles_.isBusy())
        return;
    const QVector<OrderData> orders = left_->tickedOrders();
    if (orders.isEmpty()) {
        MessageBox::warning(this, QStringLiteral("请选择需要分件的订单"));
        return;
    }
    RunSettings settings;
    settings.type = type_;
    settings.directory = right_->directory();
    settings.options = right_->options();
    settings.namingRule = right_->namingRule();
    settings.identity = left_->identity();
    settings.leftOut = right_->leftOut();
    // A reply that comes now must not replace the orders under the run.
    left_->cancelRequests();
    left_->clearErrors();
    left_->proofPanel()->clear();
    left_->setLocked(true);
    right_->setRunning(true);
    rate_.clear();
    clock_.start();
    run_.start(orders, settings);
}

void FJHome::slt_copypicthread(bool success, const QString &type, const QString &copyFile,
                               const QString &imgData, const QString &errmsg)
{
    Q_UNUSED(imgData)
    if (!success)
        qDebug().noquote() << type << copyFile << errmsg;
}

void FJHome::onRunFinished(const RunSummary &summary)
{
    if (isClosingLater())
        return;
    left_->setLocked(false);
    right_->setRunning(false);
    if (summary.stopped) {
        Toast::show(
            this,
            QStringLiteral("已停止，完成 %1/%2 个订单").arg(summary.completed).arg(summary.orders));
        return;
    }
    QString text = QString::number(summary.completed) + QStringLiteral("个订单分件完成!");
    if (!summary.refused.isEmpty())
        text += QStringLiteral("\n没有分件的订单：") +
                firstOf(summary.refused).join(QStringLiteral("，"));
    if (!summary.errors.isEmpty())
        text += QStringLiteral("\n有 %1 处失败，见失败记录").arg(summary.errors.size());
    const QString others = prooftext::otherFiles(summary.proofs);
    if (!others.isEmpty())
        text += QLatin1Char('\n') + others;
    left_->proofPanel()->showProofs(summary.proofs);
    if (summary.completed > 0)
        MessageBox::information(this, text);
    else
        MessageBox::warning(this, text);
}

void FJHome::putAway(const QVector<ProvedOrder> &orders)
{
    if (refusesWhileRunning())
        return;
    QString refusal;
    if (oldFiles_.start(orders, cardName(type_), &refusal))
        left_->proofPanel()->setBusy(true);
    else if (!refusal.isEmpty())
        MessageBox::warning(this, refusal);
}

void FJHome::onPutAway(const QVector<PutAway> &results)
{
    closeWhenIdle();
    if (isClosingLater())
        return;
    left_->proofPanel()->showPutAway(results);
    QStringList problems;
    for (const PutAway &result : results)
        problems += result.problems;
    if (problems.isEmpty())
        Toast::show(this, prooftext::putAway(results));
    else
        MessageBox::warning(
            this, BoxText(prooftext::putAway(results) + QStringLiteral("，以下文件没有移动："),
                          problems));
}
