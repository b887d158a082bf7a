#include "batchdelete/window/batchdelete_runbar.h"

#include "batchdelete/run/batchdeleterun.h"
#include "batchdelete/window/batchdelete_exportbutton.h"
#include "batchdelete/window/batchdeleteordermodel.h"
#include "widgets/tables/transferview.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHBoxLayout>
#include <QPushButton>

constexpr static int progressIntervalMs = 250;

BatchDelete_RunBar::BatchDelete_RunBar(const BatchDeleteOrderModel *orders,
                                       const BatchDeleteRun *run, QWidget *parent)
    : QWidget(parent)
    , orders_(orders)
    , run_(run)
    , countLabel_(new PlainLabel(this))
    , runLabel_(new PlainLabel(this))
    , progress_(new TransferView(this))
    , exportButton_(new BatchDelete_ExportButton(orders, this))
    , startButton_(new QPushButton(this))
{
    countLabel_->setObjectName(QStringLiteral("orderCountLabel"));
    runLabel_->setObjectName(QStringLiteral("runLabel"));
    startButton_->setObjectName(QStringLiteral("startButton"));
    startButton_->setMinimumHeight(theme::controlHeight());
    auto *bar = new QHBoxLayout;
    bar->setSpacing(theme::spacing());
    bar->addWidget(countLabel_);
    bar->addWidget(runLabel_, 1);
    bar->addWidget(exportButton_);
    bar->addWidget(startButton_);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addLayout(bar);
    layout->addWidget(progress_);
    timer_.setInterval(progressIntervalMs);
    connect(&timer_, &QTimer::timeout, this, &BatchDelete_RunBar::showProgress);

    connect(startButton_, &QPushButton::clicked, this, &BatchDelete_RunBar::startClicked);
    connect(orders, &QAbstractItemModel::modelReset, this, &BatchDelete_RunBar::showOrderCount);
    connect(run, &BatchDeleteRun::scanProgress, this, [this](const OrderIdentity &, int count) {
        runLabel_->setText(QStringLiteral("正在处理第 %1/%2 个订单，已找到 %3 个文件")
                               .arg(run_->turn())
                               .arg(run_->turns())
                               .arg(count));
    });
    showOrderCount();
    showRunState();
}

void BatchDelete_RunBar::showProgress()
{
    const TransferProgress progress = run_->progress();
    rate_.add(clock_.elapsed(), progress);
    if (progress.filesTotal > 0)
        progress_->showProgress(progress, rate_);
    // The orders to come are as long as nobody knows: each is one step of the whole.
    WorkProgress work = progress.work(WorkProgress::State::Running);
    const int turns = qMax(1, run_->turns());
    work.share = (qMax(0, run_->turn() - 1) + work.share) / turns;
    emit workChanged(work);
}

void BatchDelete_RunBar::showOrderCount()
{
    countLabel_->setText(QStringLiteral("    共%1个订单").arg(orders_->orders().size()));
}

void BatchDelete_RunBar::showChecked(int count)
{
    setPlainTip(startButton_,
                count == 0 ? QString() : QStringLiteral("已选择 %1 个订单").arg(count));
}

void BatchDelete_RunBar::showRunState()
{
    const bool running = run_->isRunning();
    if (running && !timer_.isActive()) {
        rate_.clear();
        clock_.start();
        timer_.start();
        showProgress();
    } else if (!running && timer_.isActive()) {
        timer_.stop();
        progress_->hide();
        emit workChanged({});
    }
    QString text = QStringLiteral("开始批量删除");
    if (running)
        text = run_->isStopping() ? QStringLiteral("立即停止") : QStringLiteral("停止删除");
    startButton_->setText(text);
    startButton_->setStyleSheet(running ? theme::stopButtonStyle() : theme::startButtonStyle());
    exportButton_->setEnabled(!running);
    setPlainTip(exportButton_, running ? QStringLiteral("删除结束后可导出") : QString());
    if (!running)
        runLabel_->clear();
    else if (run_->isStopping())
        runLabel_->setText(QStringLiteral("当前文件处理完后停止..."));
    else
        runLabel_->setText(
            QStringLiteral("正在处理第 %1/%2 个订单").arg(run_->turn()).arg(run_->turns()));
}
