#include "cardcheck/window/cardcheck.h"

#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "cardcheck/report/reportwriting.h"
#include "cardcheck/window/lightpanel.h"
#include "cardcheck/window/soughtorderpanel.h"
#include "cardcheck/window/statefilters.h"
#include "tasks/background.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/inputs/inputs.h"
#include "widgets/tables/sortedrows.h"
#include "widgets/tables/tables.h"
#include "widgets/tables/transferview.h"
#include "widgets/theme/theme.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSplitter>

#include <array>
#include <utility>

namespace {

constexpr int changeIntervalMs = 250;
constexpr int mostDays = 7;
constexpr int ordersShare = 2;
constexpr int checkShare = 5;

QPushButton *button(const char *name, const QString &text, const QString &style)
{
    auto *made = new QPushButton(text);
    made->setObjectName(QLatin1String(name));
    made->setStyleSheet(style);
    return made;
}

} // namespace

CardCheck::CardCheck(filereadings::Reader read, QWidget *parent)
    : FramelessWindow(parent)
    , run_(std::move(read))
    , filter_(&files_)
    , cardBox_(new ComboBox)
    , orders_(new SoughtOrderPanel)
    , light_(new LightPanel)
    , progress_(new TransferView)
    , filters_(new StateFilters)
    , table_(new EmptyStateTable)
    , startButton_(new QPushButton)
    , importButton_(button("importMissingButton", QStringLiteral("只导入缺失的"),
                           theme::primaryButtonStyle()))
    , pdfButton_(button("pdfButton", QStringLiteral("报告 PDF"), theme::secondaryButtonStyle()))
    , csvButton_(button("csvButton", QStringLiteral("导出 CSV"), theme::secondaryButtonStyle()))
{
    setWindowTitle(QStringLiteral("核对存储卡"));
    filter_.setSourceModel(&files_);
    buildTable();
    auto *splitter = new QSplitter(Qt::Horizontal);
    splitter->setStyleSheet(theme::splitterStyle());
    splitter->addWidget(orders_);
    splitter->addWidget(checkHalf());
    splitter->setStretchFactor(0, ordersShare);
    splitter->setStretchFactor(1, checkShare);
    splitter->setSizes({ordersShare * QWIDGETSIZE_MAX / 8, checkShare * QWIDGETSIZE_MAX / 8});
    splitter->setChildrenCollapsible(false);
    setContent(splitter);
    changeTimer_.setInterval(changeIntervalMs);
    connect(&changeTimer_, &QTimer::timeout, this, &CardCheck::showChanges);
    connectRun();
    addKeys();
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
    showCards();
    showState();
}

CardCheck::~CardCheck()
{
    run_.disconnect();
    // The tables outlive the models they show by a moment.
    disconnect(orders_, nullptr, this, nullptr);
    disconnect(rows_, nullptr, this, nullptr);
}

// The layout.

QWidget *CardCheck::sourceRow()
{
    cardBox_->setObjectName(QStringLiteral("cardBox"));
    cardBox_->setMinimumWidth(theme::widestChoice());
    auto *label = new PlainLabel(QStringLiteral("存储卡:"));
    label->setBuddy(cardBox_);
    auto *folder =
        button("folderButton", QStringLiteral("选择文件夹..."), theme::secondaryButtonStyle());
    folder->setShortcut(QKeySequence::Open);
    setPlainTip(folder, folder->shortcut().toString(QKeySequence::NativeText));
    connect(folder, &QPushButton::clicked, this, &CardCheck::chooseFolder);
    connect(cardBox_, qOverload<int>(&QComboBox::activated), this, &CardCheck::chooseCard);
    startButton_->setObjectName(QStringLiteral("startButton"));
    connect(startButton_, &QPushButton::clicked, this, &CardCheck::startOrCancel);

    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addWidget(label);
    layout->addWidget(cardBox_, 1);
    layout->addWidget(folder);
    layout->addWidget(startButton_);
    return row;
}

QWidget *CardCheck::checkHalf()
{
    auto *half = new QWidget;
    auto *layout = new QVBoxLayout(half);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(sourceRow());
    layout->addWidget(light_);
    layout->addWidget(progress_);
    layout->addWidget(filters_);
    layout->addWidget(table_, 1);
    layout->addWidget(foot());
    return half;
}

QWidget *CardCheck::foot()
{
    setPlainTip(importButton_,
                QStringLiteral("把未导入、目标缺失和内容不同的文件交给左侧选中的一个订单"));
    connect(importButton_, &QPushButton::clicked, this, &CardCheck::importMissing);
    connect(pdfButton_, &QPushButton::clicked, this, [this] { saveReport(QStringLiteral("pdf")); });
    connect(csvButton_, &QPushButton::clicked, this, [this] { saveReport(QStringLiteral("csv")); });
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addWidget(importButton_);
    layout->addStretch();
    layout->addWidget(pdfButton_);
    layout->addWidget(csvButton_);
    return row;
}

void CardCheck::buildTable()
{
    table_->setObjectName(QStringLiteral("fileTable"));
    table_->setAccessibleName(QStringLiteral("存储卡的文件"));
    prepareTable(table_);
    table_->setEmptyText(QStringLiteral("选择存储卡或文件夹，再按“开始核对”"));
    rows_ = new SortedRows(table_, &filter_, CardFileModel::SortRole);
    table_->sortByColumn(CardFileModel::StateColumn, Qt::AscendingOrder);
    static constexpr std::array<int, CardFileModel::ColumnCount> widths{150, 190, 64, 84,
                                                                        160, 300, 160};
    for (int column = 0; column < CardFileModel::ColumnCount; ++column)
        table_->setColumnWidth(column, K::scaledPx(widths[std::size_t(column)]));
    for (const int paths : {CardFileModel::NameColumn, CardFileModel::TargetColumn})
        table_->setItemDelegateForColumn(paths, new ElidedTextDelegate(Qt::ElideMiddle, table_));
    connect(filters_, &StateFilters::chosen, this,
            [this](std::optional<evidence::State> state) { filter_.showOnly(state); });
}

void CardCheck::connectRun()
{
    connect(&run_, &CardCheckRun::listed, this, &CardCheck::onListed);
    connect(&run_, &CardCheckRun::fileChanged, this, [this](int index) { changed_.insert(index); });
    connect(&run_, &CardCheckRun::finished, this, &CardCheck::onFinished);
    connect(&watch_, &CardWatch::changed, this, &CardCheck::showCards);
    connect(orders_, &SoughtOrderPanel::selectionChanged, this, &CardCheck::showState);
}

void CardCheck::addKeys()
{
    const auto current = [this] {
        const int row = rows_->current();
        return row < 0 ? -1 : filter_.mapToSource(filter_.index(row, 0)).row();
    };
    rows_->addAction(QStringLiteral("复制存储位置"), QKeySequence::Copy, [this, current](int) {
        const int row = current();
        if (files_.hasRow(row) && !files_.file(row).place.target.isEmpty())
            QGuiApplication::clipboard()->setText(files_.file(row).place.target);
    });
}

void CardCheck::showEvent(QShowEvent *event)
{
    FramelessWindow::showEvent(event);
    if (opened_)
        return;
    opened_ = true;
    orders_->open();
    watch_.start();
}

FramelessWindow::CloseAnswer CardCheck::closeRequested()
{
    if (run_.isRunning() &&
        !agreedToClose(QStringLiteral("正在核对，关闭窗口会取消核对，确认要关闭吗？")))
        return CloseAnswer::Refuse;
    orders_->cancel();
    run_.cancel();
    return CloseAnswer::Close;
}

// Choosing a card.

void CardCheck::showCards()
{
    const QString before = chosenRoot();
    cardBox_->clear();
    for (const platform::RemovableDrive &card : watch_.cards()) {
        cardBox_->addItem(QStringLiteral("%1 %2（%3）")
                              .arg(QDir::toNativeSeparators(card.root), card.label,
                                   dataSizeText(double(card.bytes))),
                          card.root);
    }
    for (const QString &folder : qAsConst(folders_))
        cardBox_->addItem(QDir::toNativeSeparators(folder), folder);
    const int same = cardBox_->findData(before);
    cardBox_->setCurrentIndex(same >= 0 ? same : cardBox_->count() > 0 ? 0 : -1);
    cardBox_->setEnabled(cardBox_->count() > 0 && !run_.isRunning());
    // A card that has just been plugged in is what the user came for.
    if (chosenRoot() != before && !run_.isRunning())
        onCardChosen(chosenRoot());
    showState();
}

void CardCheck::chooseFolder()
{
    if (run_.isRunning())
        return;
    const QString folder = FileDialog::existingFolder(this, QStringLiteral("选择存储卡或文件夹"),
                                                      QStringLiteral("cardcheck"));
    if (folder.isEmpty())
        return;
    if (cardBox_->findData(folder) < 0) {
        folders_.append(folder);
        showCards();
    }
    cardBox_->setCurrentIndex(cardBox_->findData(folder));
    onCardChosen(folder);
    showState();
}

void CardCheck::chooseCard()
{
    onCardChosen(chosenRoot());
    showState();
}

QString CardCheck::chosenRoot() const
{
    return cardBox_->currentData().toString();
}

QString CardCheck::cardName() const
{
    return cardBox_->currentText();
}

/// The orders of the card's days are sought while the user looks.
void CardCheck::onCardChosen(const QString &root)
{
    if (root.isEmpty())
        return;
    onDisk(
        this, root,
        [root] { return cardfiles::shootingDays(cardlister::listCard(root).files, mostDays); },
        look_.only([this](const QVector<QDate> &days) { orders_->seekDays(days); }));
}

// The check.

void CardCheck::startOrCancel()
{
    if (run_.isRunning()) {
        run_.cancel();
        return;
    }
    if (chosenRoot().isEmpty()) {
        MessageBox::warning(this, QStringLiteral("请先选择存储卡或文件夹"));
        return;
    }
    look_.abandon();
    QVector<places::SoughtOrder> sought;
    const auto orders = orders_->selected();
    for (const soughtorders::Order &order : orders) {
        if (!order.folder.isEmpty())
            sought.append({order.key(), order.folder});
    }
    files_.setFiles({});
    filters_->showAll();
    table_->setEmptyText(QStringLiteral("正在列出文件..."));
    checkedCard_ = cardName();
    changed_.clear();
    rate_.clear();
    clock_.start();
    changeTimer_.start();
    run_.start({chosenRoot(), orders_->branch().identity(), sought});
    showState();
}

void CardCheck::onListed()
{
    files_.setFiles(run_.findings().files);
    table_->setEmptyText(QStringLiteral("没有文件"));
    showState();
}

void CardCheck::onFinished()
{
    changeTimer_.stop();
    checkedAt_ = QDateTime::currentDateTime();
    showChanges();
    progress_->hide();
    setWork({});
    // What was checked last has moved among the rest.
    rows_->sortAgain();
    if (files_.rowCount() == 0)
        table_->setEmptyText(verdict::of(run_.findings()).headline);
    showState();
}

void CardCheck::showChanges()
{
    const QSet<int> changed = std::exchange(changed_, {});
    for (const int row : changed) {
        if (files_.hasRow(row))
            files_.setFile(row, run_.findings().files.at(row));
    }
    if (run_.isRunning()) {
        const TransferProgress progress = run_.progress();
        rate_.add(clock_.elapsed(), progress);
        progress_->showProgress(progress, rate_);
        setWork(progress.work(WorkProgress::State::Running));
    }
    showState();
}

void CardCheck::showState()
{
    const bool running = run_.isRunning();
    const verdict::Findings &findings = run_.findings();
    const bool hasFindings = !findings.card.root.isEmpty();
    if (running)
        showRunButton(startButton_, QStringLiteral("取消"), theme::stopButtonStyle());
    else
        showRunButton(startButton_, QStringLiteral("开始核对"), theme::startButtonStyle());
    light_->showVerdict(
        hasFindings
            ? verdict::of(findings)
            : verdict::Verdict{verdict::Light::None, QStringLiteral("存储卡可以格式化吗？"), {}});
    filters_->showTally(verdict::tallyOf(findings.files));
    const bool isOver = findings.isFinished && !running;
    importButton_->setVisible(isOver && !verdict::missingFiles(findings.files).isEmpty());
    pdfButton_->setEnabled(isOver);
    csvButton_->setEnabled(isOver);
    cardBox_->setEnabled(cardBox_->count() > 0 && !running);
    orders_->setLocked(running);
}

// What follows.

void CardCheck::importMissing()
{
    const QStringList missing = verdict::missingFiles(run_.findings().files);
    const auto orders = orders_->selected();
    if (orders.size() != 1) {
        MessageBox::information(
            this, QStringLiteral("请在左侧只选中一个订单，缺失的 %1 个文件将交给它导入。")
                      .arg(missing.size()));
        return;
    }
    const soughtorders::Order &order = orders.constFirst();
    const QString card = QStringLiteral("导入原片");
    ConfirmDialog::ask(this,
                       QStringLiteral("在“%1”中为订单 %2 %3 选入缺失的 %4 个文件？\n"
                                      "文件会加入待导入列表，由您确认后开始导入。")
                           .arg(card, order.displayNumber(), order.customers())
                           .arg(missing.size()),
                       ConfirmDialog::Enter::Confirms,
                       [this, card, order, missing](bool confirmed) {
                           if (!confirmed)
                               return;
                           OrderPlace place{order.branch, order.orderPhotoId, order.orderPayForKey};
                           place.files = missing;
                           emit importRequested(card, place);
                       });
}

void CardCheck::saveReport(const QString &suffix)
{
    const reportcontent::Report report{run_.findings(), checkedCard_, AccountContext::uid,
                                       checkedAt_};
    const bool isPdf = suffix == QLatin1String("pdf");
    const QString path = FileDialog::saveFile(
        this, isPdf ? QStringLiteral("保存核对报告") : QStringLiteral("导出核对结果"),
        reportcontent::fileName(report, suffix),
        isPdf ? QStringLiteral("PDF (*.pdf)") : QStringLiteral("CSV (*.csv)"),
        QStringLiteral("cardcheckreport"));
    if (path.isEmpty())
        return;
    onDisk(
        this, path,
        [report, path, isPdf] {
            return isPdf ? reportwriting::writePdf(report, path)
                         : reportwriting::writeCsv(report, path);
        },
        [this, path](bool isWritten) {
            if (isWritten)
                Toast::show(this, QStringLiteral("已保存: %1").arg(QDir::toNativeSeparators(path)));
            else
                MessageBox::warning(this, QStringLiteral("无法写入 %1，请检查磁盘空间和权限")
                                              .arg(QDir::toNativeSeparators(path)));
        });
}
