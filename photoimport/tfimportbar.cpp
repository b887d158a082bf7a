#include "photoimport/tfimportbar.h"

#include "app/context/k.h"
#include "photoimport/tfimportthreadmanager.h"
#include "widgets/inputs.h"
#include "widgets/theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr int progressBarPx = 6;
constexpr int progressSteps = 1000;

QString lockedTip()
{
    return QStringLiteral("导片进行中，全部完成或停止后才能修改");
}

} // namespace

tfimportbar::tfimportbar(QWidget *parent)
    : QWidget(parent)
    , modeBox_(new ComboBox(this))
    , workerBox_(new ComboBox(this))
    , progressLabel_(new QLabel(this))
    , progressBar_(new QProgressBar(this))
    , pauseButton_(new QPushButton(this))
    , startButton_(new QPushButton(this))
{
    modeBox_->setObjectName(QStringLiteral("modeBox"));
    modeBox_->addItems(
        {QStringLiteral("照片"), QStringLiteral("试拍视频"), QStringLiteral("精修视频")});
    modeBox_->setAccessibleName(QStringLiteral("导入类型"));
    workerBox_->setObjectName(QStringLiteral("workerBox"));
    for (int count = 1; count <= tfimportthreadmanager::mostWorkers; ++count)
        workerBox_->addItem(QStringLiteral("%1 个线程").arg(count), count);
    workerBox_->setAccessibleName(QStringLiteral("同时导入的线程数"));
    progressLabel_->setObjectName(QStringLiteral("progressLabel"));
    progressLabel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    progressBar_->setObjectName(QStringLiteral("progressBar"));
    progressBar_->setTextVisible(false);
    progressBar_->setRange(0, progressSteps);
    progressBar_->setFixedHeight(K::scaledPx(progressBarPx));
    progressBar_->setStyleSheet(theme::progressBarStyle());
    pauseButton_->setObjectName(QStringLiteral("pauseButton"));
    pauseButton_->setStyleSheet(theme::secondaryButtonStyle());
    startButton_->setObjectName(QStringLiteral("startButton"));
    startButton_->setMinimumHeight(theme::controlHeight());

    auto *progress = new QVBoxLayout;
    progress->setSpacing(theme::spacing() / 2);
    progress->addStretch();
    progress->addWidget(progressLabel_);
    progress->addWidget(progressBar_);
    progress->addStretch();
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(theme::margin(), 0, theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(modeBox_);
    layout->addWidget(workerBox_);
    layout->addLayout(progress, 1);
    layout->addWidget(pauseButton_);
    layout->addWidget(startButton_);

    setRunning(false);
    setPaused(false);
    hideProgress();
    connect(modeBox_, qOverload<int>(&QComboBox::activated), this, &tfimportbar::photoModeChosen);
    connect(workerBox_, qOverload<int>(&QComboBox::activated), this,
            [this](int index) { emit workersChosen(index + 1); });
    connect(pauseButton_, &QPushButton::clicked, this, &tfimportbar::pauseClicked);
    connect(startButton_, &QPushButton::clicked, this, &tfimportbar::startClicked);
}

void tfimportbar::setPhotoMode(int mode)
{
    // Whatever else the mode says counts as retouched videos.
    modeBox_->setCurrentIndex(mode >= 0 && mode < modeBox_->count() ? mode : modeBox_->count() - 1);
}

void tfimportbar::setWorkers(int count)
{
    workerBox_->setCurrentIndex(count - 1);
}

void tfimportbar::setRunning(bool running)
{
    modeBox_->setEnabled(!running);
    workerBox_->setEnabled(!running);
    modeBox_->setToolTip(running ? lockedTip() : QStringLiteral("导入照片还是视频"));
    workerBox_->setToolTip(running ? lockedTip() : QStringLiteral("同时导入的线程数"));
    pauseButton_->setEnabled(running);
    startButton_->setText(running ? QStringLiteral("停止导片") : QStringLiteral("全部开始"));
    startButton_->setShortcut(Qt::CTRL + Qt::Key_Return); // a new text takes the shortcut away
    startButton_->setToolTip(startButton_->shortcut().toString(QKeySequence::NativeText));
    startButton_->setStyleSheet(running ? theme::stopButtonStyle() : theme::startButtonStyle());
}

void tfimportbar::setPaused(bool paused)
{
    pauseButton_->setText(paused ? QStringLiteral("继续") : QStringLiteral("暂停"));
    pauseButton_->setShortcut(Qt::CTRL + Qt::Key_P);
    pauseButton_->setToolTip(pauseButton_->shortcut().toString(QKeySequence::NativeText));
}

void tfimportbar::showProgress(const TransferProgress &progress, const TransferRate &rate)
{
    progressLabel_->setText(progressText(progress, rate));
    progressLabel_->setToolTip(progressLabel_->text());
    progressBar_->setValue(progress.bytesTotal > 0
                               ? int(progressSteps * progress.bytesDone / progress.bytesTotal)
                               : 0);
    progressLabel_->show();
    progressBar_->show();
}

void tfimportbar::showRegistering(int pending)
{
    progressLabel_->setText(QStringLiteral("正在登记，剩余 %1").arg(pending));
    progressBar_->setValue(progressSteps);
    progressLabel_->show();
    progressBar_->show();
}

void tfimportbar::hideProgress()
{
    progressLabel_->hide();
    progressBar_->hide();
}
