#include "photoimport/window/tfimportbar.h"

#include "photoimport/rules/photorules.h"
#include "photoimport/run/tfimportthreadmanager.h"
#include "widgets/inputs/inputs.h"
#include "widgets/tables/transferview.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>

tfimportbar::tfimportbar(QWidget *parent)
    : QWidget(parent)
    , modeBox_(new ComboBox(this))
    , workerBox_(new ComboBox(this))
    , progress_(new TransferView(this))
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
    pauseButton_->setObjectName(QStringLiteral("pauseButton"));
    pauseButton_->setStyleSheet(theme::secondaryButtonStyle());
    startButton_->setObjectName(QStringLiteral("startButton"));
    startButton_->setMinimumHeight(theme::controlHeight());

    auto *progress = new QVBoxLayout; // holds the place while there is nothing to show
    progress->addWidget(progress_, 0, Qt::AlignVCenter);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(theme::margin(), 0, theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    auto *cardCheck = new QPushButton(QStringLiteral("核对存储卡"), this);
    cardCheck->setObjectName(QStringLiteral("cardCheckButton"));
    cardCheck->setStyleSheet(theme::secondaryButtonStyle());
    cardCheck->setToolTip(QStringLiteral("存储卡可以格式化吗？逐字节核对卡和存储"));
    connect(cardCheck, &QPushButton::clicked, this, &tfimportbar::cardCheckClicked);
    layout->addWidget(modeBox_);
    layout->addWidget(workerBox_);
    layout->addLayout(progress, 1);
    layout->addWidget(cardCheck);
    layout->addWidget(pauseButton_);
    layout->addWidget(startButton_);

    setRunning(false, false);
    setPaused(false);
    connect(modeBox_, qOverload<int>(&QComboBox::activated), this,
            [this](int index) { emit photoModeChosen(photorules::photoModeOf(index)); });
    connect(workerBox_, qOverload<int>(&QComboBox::activated), this,
            [this](int index) { emit workersChosen(index + 1); });
    connect(pauseButton_, &QPushButton::clicked, this, &tfimportbar::pauseClicked);
    connect(startButton_, &QPushButton::clicked, this, &tfimportbar::startClicked);
}

void tfimportbar::setPhotoMode(PhotoMode mode)
{
    // An unknown one imports as the last of the box does.
    modeBox_->setCurrentIndex(qMin(int(mode), modeBox_->count() - 1));
}

void tfimportbar::setWorkers(int count)
{
    workerBox_->setCurrentIndex(count - 1);
}

void tfimportbar::setRunning(bool running, bool registering)
{
    const auto lock = [](QWidget *box, bool locked, const QString &tip) {
        box->setEnabled(!locked);
        setPlainTip(box, locked ? QStringLiteral("导片进行中，全部完成或停止后才能修改") : tip);
    };
    lock(modeBox_, running || registering, QStringLiteral("导入照片还是视频"));
    lock(workerBox_, running, QStringLiteral("同时导入的线程数"));
    pauseButton_->setEnabled(running);
    if (running)
        showRunButton(startButton_, QStringLiteral("停止导片"), theme::stopButtonStyle());
    else
        showRunButton(startButton_, QStringLiteral("全部开始"), theme::startButtonStyle());
}

void tfimportbar::setPaused(bool paused)
{
    pauseButton_->setText(paused ? QStringLiteral("继续") : QStringLiteral("暂停"));
    pauseButton_->setShortcut(Qt::CTRL + Qt::Key_P);
    setPlainTip(pauseButton_, pauseButton_->shortcut().toString(QKeySequence::NativeText));
}
