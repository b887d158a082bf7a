#include "fileimport/window/importfiles.h"

#include "fileimport/imported/originalview.h"
#include "fileimport/rules/importrequests.h"
#include "fileimport/rules/importrules.h"
#include "fileimport/run/importrecording.h"
#include "fileimport/window/filehalf.h"
#include "fileimport/window/importfilepanel.h"
#include "fileimport/window/importmarks.h"
#include "fileimport/window/importorderpanel.h"
#include "fileimport/window/importrestorer.h"
#include "fileimport/window/orderfilechooser.h"
#include "files/pathgate.h"
#include "ledger/ledger.h"
#include "runreport/closingquestion.h"
#include "runreport/reportline.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/orders/orderfinder.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/tables/filedroptable.h"
#include "widgets/tables/transferview.h"
#include "widgets/windows/sharedwidth.h"

#include <QClipboard>
#include <QDebug>
#include <QGuiApplication>

namespace {

constexpr int progressIntervalMs = 250;
constexpr int mostForOrders = 62; // percent of the width, of which the photos want theirs

QString importingText()
{
    return QStringLiteral("导片中...");
}

} // namespace

ImportFiles::ImportFiles(QWidget *parent)
    : FramelessWindow(parent)
    , panel_(new ImportOrderPanel(&orders_))
    , filePanel_(new ImportFilePanel(&files_))
    , rightHalf_(new FileHalf(filePanel_, &files_))
    // The orders show their buttons, as far as what is on the right can spare the room.
    , halves_(new SharedWidth(panel_, rightHalf_,
                              [this](int width) {
                                  return qMin(panel_->widthWithActions(),
                                              width * mostForOrders / 100);
                              }))
    , finder_(new OrderFinder(this,
                              {&branch_, panel_->searchBar(), panel_->table(), panel_->overlay()}))
    , chooser_(
          new OrderFileChooser(this, &orders_, [this](int row) { return mayChangeFiles(row); }))
    , report_(new ReportLine(this, panel_->notices()))
    , marks_(new ImportMarks(this, {&orders_, &files_, filePanel_, panel_->notices(), chooser_}))
    , restorer_(std::make_unique<ImportRestorer>(
          ImportRestorer::Place{this, &orders_, panel_, &branch_, finder_}))
{
    qRegisterMetaType<ImportFile>();
    qRegisterMetaType<ImportOrder>();
    setContent(halves_);

    progressTimer_.setInterval(progressIntervalMs);
    connect(&progressTimer_, &QTimer::timeout, this, &ImportFiles::refreshProgress);
    connect(&folderOpener_, &SharedFolderOpener::finished, this,
            [this](bool success, const QString &error) {
                Q_UNUSED(success)
                if (!error.isEmpty())
                    Toast::show(this, error);
            });
    connect(chooser_, &OrderFileChooser::filesChanged, this, &ImportFiles::onFilesChosen);
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
    finder_->setLeaving({[this] { return run_->isBusy() ? importingText() : QString(); },
                         [this] { return importrules::leavingQuestion(orders_.orders()); }});
    finder_->setSelect([this](const QString &photoSet) {
        const bool isThere = panel_->selectPhotoSet(photoSet);
        if (isThere && photoSet == place_.orderPhotoId)
            fulfil(panel_->selectedRow());
        return isThere;
    });
    connect(finder_, &OrderFinder::branchLeft, this, &ImportFiles::onBranchLeft);
    connect(finder_, &OrderFinder::branchSwitched, this, &ImportFiles::reqOrderList);
    finder_->setReader(&importrequests::readOrders,
                       [this](const importrequests::FoundOrders &list, OrderFinder::Search) {
                           QVector<ImportOrder> orders = list.orders;
                           run_->keepMarks(&orders);
                           panel_->keepPlaceWhile([&] { orders_.setOrders(orders); });
                       });
    connectPanel();
    connectFailures();
    setMode(int(ImportMode::Originals));
}

ImportFiles::~ImportFiles()
{
    // The tables outlive the models they show by a moment.
    disconnect(panel_, nullptr, this, nullptr);
}

void ImportFiles::setMode(int mode)
{
    mode_ = mode == int(ImportMode::Retouched) ? ImportMode::Retouched : ImportMode::Originals;
    chooser_->setMode(mode_);
    marks_->setMode(mode_);
    showPhotoView(mode_ == ImportMode::Originals);
    panel_->offerCardCheck(mode_ == ImportMode::Originals);
    auto run = std::make_unique<ImportRun>(mode_);
    restorer_->setRun(mode_, run.get());
    run_ = std::move(run);
    connectRun();
}

void ImportFiles::showPhotoView(bool shown)
{
    if (shown == (photos_ != nullptr))
        return;
    if (!shown) {
        delete photos_;
        photos_ = nullptr;
        return;
    }
    photos_ = new OriginalView;
    photos_->setListedOrders([this] { return orders_.orders(); });
    rightHalf_->addWidget(photos_);
    for (int part = 0; part < rightHalf_->count(); ++part)
        rightHalf_->setStretchFactor(part, 1);
    // After a deletion the numbers of the search are not the service's any more.
    connect(photos_, &OriginalView::listed, this, [this](int photos, int rawFiles) {
        orders_.change(orders_.rowOf(shownOrderId_), [=](ImportOrder &order) {
            order.numberYuanpian = photos;
            order.numberYuanshidang = rawFiles;
        });
    });
    connect(photos_, &OriginalView::deletionEnded, restorer_.get(),
            &ImportRestorer::lookForLeftPhotos);
    connect(photos_, &OriginalView::stopped, this, &ImportFiles::finishClosingWhenIdle);
}

void ImportFiles::connectPanel()
{
    OrderSearchBar *searchBar = panel_->searchBar();
    connect(searchBar, &OrderSearchBar::searchRequested, this, &ImportFiles::onSearchClick);
    connect(searchBar, &OrderSearchBar::searchTypeChanged, this, &ImportFiles::onSearchTypeChanged);
    connect(searchBar, &OrderSearchBar::branchChosen, this, &ImportFiles::onBranchSelectionChanged);
    connect(panel_, &ImportOrderPanel::selectionChanged, this,
            &ImportFiles::onOrderTableSelectionChanged);
    connect(panel_, &ImportOrderPanel::orderNumberClicked, this,
            &ImportFiles::onOrderNumberClicked);
    connect(panel_, &ImportOrderPanel::actionClicked, this,
            [this](int row, OrderActionsDelegate::Action action) {
                if (action == OrderActionsDelegate::SelectFiles)
                    onSelectFilesClicked(row);
                else if (action == OrderActionsDelegate::ClearFiles)
                    onClearFilesClicked(row);
                else
                    onOpenDirClicked(row);
            });
    connect(panel_, &ImportOrderPanel::registerAgainClicked, this,
            &ImportFiles::onRegisterAgainClicked);
    // A box shown while the drop is going on would freeze the program that the files come from.
    connect(panel_, &ImportOrderPanel::filesDropped, this, &ImportFiles::onFilesDropped,
            Qt::QueuedConnection);
    connect(filePanel_, &ImportFilePanel::retryClicked, this, &ImportFiles::onRetryImportClicked);
    connect(panel_, &ImportOrderPanel::startClicked, this, &ImportFiles::onStartAllClicked);
    connect(panel_, &ImportOrderPanel::cardCheckClicked, this, &ImportFiles::cardCheckRequested);
    connect(panel_, &ImportOrderPanel::orderCheckClicked, this, [this](int row) {
        const ImportOrder &order = orders_.order(row);
        emit orderCheckRequested(
            {order.identity(), order.orderPayForKey, order.displayNumber(), order.displayName(),
             importrules::hasFolder(order) ? importrules::importPathOf(order) : QString()});
    });
}

void ImportFiles::connectFailures()
{
    connect(report_->failures(), &FailureModel::countChanged, this, [this](int failures) {
        panel_->progress()->setFailures(failures);
        if (!importing_)
            setWork(report_->failures()->workAtRest());
    });
    connect(panel_->progress(), &TransferView::failuresClicked, report_->page(), &RunPage::open);
    report_->page()->setRetry({[this](const QVector<RunFailure> &failures) { retry(failures); },
                               [this] {
                                   if (importing_)
                                       retry(QVector<RunFailure>(report_->failures()->failures()));
                                   else
                                       retryAll();
                               },
                               {}});
}

void ImportFiles::connectRun()
{
    const ImportRun *run = run_.get();
    connect(run, &ImportRun::fileChanged, this, &ImportFiles::onFileChanged);
    connect(run, &ImportRun::filesChanged, this,
            [this](const OrderIdentity &orderId, const QVector<ImportFile> &files) {
                orders_.change(orders_.rowOf(orderId),
                               [&files](ImportOrder &order) { order.files = files; });
                for (const ImportFile &file : files)
                    noteFailure(orderId, file);
                if (orderId == shownOrderId_)
                    files_.setFiles(files);
            });
    connect(run, &ImportRun::orderActivityChanged, this,
            [this](const OrderIdentity &orderId, bool importing) {
                const int row = orders_.rowOf(orderId);
                // Told after every file; the row is announced only when something is new.
                if (orders_.hasRow(row) && orders_.order(row).importing != importing)
                    orders_.change(
                        row, [importing](ImportOrder &order) { order.importing = importing; });
            });
    connect(run, &ImportRun::orderStarted, this, [this](const OrderIdentity &orderId) {
        if (orders_.hasRow(orders_.rowOf(orderId)))
            emit startImportFiles(orders_.order(orders_.rowOf(orderId)));
    });
    connect(run, &ImportRun::orderRegistered, this, &ImportFiles::onOrderRegistered);
    connect(run, &ImportRun::orderLeftUnregistered, this, [this](const OrderIdentity &orderId) {
        orders_.change(orders_.rowOf(orderId),
                       [](ImportOrder &order) { order.unregistered = true; });
    });
    connect(run, &ImportRun::switchedOff, this, [this] {
        setImporting(false);
        report_->tellOf({choicerestoring::workOf(mode_), {}, [this] { retryAll(); }, false});
    });
    connect(run, &ImportRun::resubmitNeeded, this, &ImportFiles::askForResubmit);
    connect(run, &ImportRun::mismatchFound, this,
            [this](const OrderIdentity &, const BoxText &notice) {
                MessageBox::warning(this, notice);
            });
    connect(run, &ImportRun::orderRefused, this,
            [this](const QString &text) { MessageBox::warning(this, text); });
    connect(run, &ImportRun::allImported, this, [this](const QString &unannounced) {
        MessageBox::information(this, BoxText(QStringLiteral("导入完成！")).explained(unannounced));
    });
    connect(run, &ImportRun::tasksEnded, this, &ImportFiles::finishClosingWhenIdle);
}

void ImportFiles::showEvent(QShowEvent *event)
{
    FramelessWindow::showEvent(event);
    if (!opened_) {
        opened_ = true;
        const QString tool = mode_ == ImportMode::Originals ? QStringLiteral("originals")
                                                            : QStringLiteral("retouched");
        panel_->openColumns(tool);
        halves_->open(tool);
        restorer_->open();
        reqShopInfo();
    }
}

FramelessWindow::CloseAnswer ImportFiles::closeRequested()
{
    QStringList notices{importrules::closingNotice(run_->isBusy(), run_->unregisteredOrders(),
                                                   Ledger::current().isKept()),
                        photos_ ? photos_->closingNotice() : QString()};
    notices.removeAll(QString());
    if (!notices.isEmpty() &&
        !agreedToClose(closingQuestion(
            (notices << QStringLiteral("确认要关闭吗？")).join(QLatin1Char('\n')), run_->isBusy())))
        return CloseAnswer::Refuse;
    finder_->cancel();
    chooser_->cancel();
    if (run_->isBusy())
        stopAllImports();
    if (photos_)
        photos_->stop();
    return hasLiveWork() ? CloseAnswer::CloseLater : CloseAnswer::Close;
}

bool ImportFiles::hasLiveWork() const
{
    return run_->hasLiveTasks() || (photos_ && !photos_->isStopped());
}

void ImportFiles::finishClosingWhenIdle()
{
    if (isClosingLater() && !hasLiveWork())
        finishClosing();
}

// Branch and order search.

void ImportFiles::goTo(const OrderPlace &place)
{
    place_ = place;
    finder_->goTo(place);
}

void ImportFiles::fulfil(int row)
{
    const OrderPlace place = std::exchange(place_, {});
    if (!place.files.isEmpty())
        onFilesDropped(row, place.files);
    if (!place.registers)
        return;
    orders_.change(row, [](ImportOrder &order) {
        order.importPath = importrules::importPathOf(order);
        order.unregistered = true;
    });
    onRegisterAgainClicked(row);
}

void ImportFiles::reqShopInfo()
{
    finder_->open();
}

void ImportFiles::onBranchSelectionChanged(int index)
{
    const QString shopId = panel_->searchBar()->branchId(index);
    qDebug() << "选择了分店:" << shopId;
    finder_->chooseBranch(shopId);
}

void ImportFiles::onBranchLeft()
{
    chooser_->cancel();
    orders_.setOrders({});
    onOrderTableSelectionChanged();
}

void ImportFiles::onSearchTypeChanged(int type)
{
    Q_UNUSED(type) // the search bar shows the field that the type needs
}

void ImportFiles::onSearchClick()
{
    if (run_->isBusy()) {
        MessageBox::warning(this, importingText());
        return;
    }
    if (branch_.isConfirmed())
        reqOrderList();
    else
        finder_->confirmBranch(); // when that succeeds a search follows
}

void ImportFiles::reqOrderList()
{
    finder_->search();
}

// What the rows of the order table do.

const ImportOrder *ImportFiles::shownOrder() const
{
    const int row = orders_.rowOf(shownOrderId_);
    return row >= 0 ? &orders_.order(row) : nullptr;
}

void ImportFiles::onOrderTableSelectionChanged()
{
    const int row = panel_->selectedRow();
    if (!orders_.hasRow(row)) {
        shownOrderId_ = {};
        files_.clear();
        marks_->setShown({});
        if (photos_)
            photos_->setOrder({});
        return;
    }
    shownOrderId_ = orders_.order(row).identity();
    files_.setFiles(orders_.order(row).files);
    marks_->setShown(shownOrderId_);
    if (photos_) {
        photos_->setOrder(originalrequests::orderMap(orders_.order(row)));
    }
    emit orderSelectionChanged(orders_.order(row));
}

void ImportFiles::onOrderNumberClicked(int row)
{
    if (!orders_.hasRow(row))
        return;
    QGuiApplication::clipboard()->setText(orders_.order(row).displayNumber());
    Toast::show(this, QStringLiteral("订单号已复制"));
}

bool ImportFiles::mayChangeFiles(int row)
{
    const bool busy =
        importing_ || (orders_.hasRow(row) && run_->isAtWork(orders_.order(row).identity()));
    if (busy)
        MessageBox::warning(this, importingText());
    return !busy;
}

bool ImportFiles::refusesForOtherTool(const QVector<ImportOrder> &orders)
{
    const QString refusal = run_->refusalOf(orders);
    if (!refusal.isEmpty())
        MessageBox::warning(this, refusal);
    return !refusal.isEmpty();
}

void ImportFiles::onSelectFilesClicked(int row)
{
    chooser_->choose(row);
}

void ImportFiles::onFilesDropped(int row, const QStringList &paths)
{
    chooser_->take(row, paths);
}

void ImportFiles::onFilesChosen(int row)
{
    const ImportOrder &order = orders_.order(row);
    report_->failures()->takeOrder(order.identity());
    for (const ImportFile &file : order.files)
        noteFailure(order.identity(), file);
    if (orders_.order(row).identity() == shownOrderId_)
        files_.setFiles(orders_.order(row).files);
}

void ImportFiles::onClearFilesClicked(int row)
{
    if (!mayChangeFiles(row) || !orders_.hasRow(row))
        return;
    chooser_->clear(row);
    qDebug() << "订单" << orders_.order(row).displayNumber() << "已清空文件";
}

void ImportFiles::onOpenDirClicked(int row)
{
    if (!orders_.hasRow(row) || orders_.order(row).importPath.isEmpty())
        return;
    const ImportOrder &order = orders_.order(row);
    const pathgate::Refusal refusal =
        pathgate::refusalOfImport(order.displayName(), order.importPath, {});
    if (refusal.isRefused())
        MessageBox::warning(this, refusal.text());
    else
        folderOpener_.open(order.importPath);
}

// The import.

void ImportFiles::onStartAllClicked()
{
    if (chooser_->isBusy())
        return; // the shortcut reaches us while files are being looked at
    importing_ = !importing_;
    if (!importing_) {
        stopAllImports();
        setImporting(false);
        return;
    }
    // When there is nothing to start the flag stays on until the button is pressed again.
    const QString title = QStringLiteral("提示");
    if (orders_.orders().isEmpty()) {
        MessageBox::warning(this, QStringLiteral("没有订单可导入"), title);
        return;
    }
    if (refusesForOtherTool(orders_.unfinished())) {
        importing_ = false;
        return;
    }
    if (!run_->start(orders_.orders(), branch_.identity())) {
        MessageBox::warning(this, QStringLiteral("请先为订单选择要导入的文件"), title);
        return;
    }
    abandonSearch();
    emit startImportAllFiles(orders_.orders().toList());
    setImporting(true);
}

/// Files that failed are among those that a start imports.
void ImportFiles::retryAll()
{
    if (!importing_)
        onStartAllClicked();
}

/// A reply that comes now must not replace the orders that are being worked on.
void ImportFiles::abandonSearch()
{
    finder_->cancel();
    finder_->showBranch();
}

void ImportFiles::stopAllImports()
{
    run_->stopAllImports();
}

void ImportFiles::setImporting(bool importing)
{
    importing_ = importing;
    panel_->setRunning(importing);
    marks_->setImporting(importing);
    if (importing) {
        report_->begin();
        rate_.clear();
        clock_.start();
        progressTimer_.start();
        refreshProgress();
    } else {
        progressTimer_.stop();
        panel_->progress()->hide();
        setWork(report_->failures()->workAtRest());
    }
}

void ImportFiles::refreshProgress()
{
    const TransferProgress progress = run_->progress();
    rate_.add(clock_.elapsed(), progress);
    panel_->progress()->showProgress(progress, rate_);
    setWork(progress.work(WorkProgress::State::Running));
}

void ImportFiles::onFileChanged(const OrderIdentity &orderId, const ImportFile &file)
{
    const int position = orders_.applyFile(orders_.rowOf(orderId), file);
    noteFailure(orderId, file);
    if (orderId == shownOrderId_)
        files_.updateRow(position, file.state, file.message);
}

void ImportFiles::noteFailure(const OrderIdentity &orderId, const ImportFile &file)
{
    const int row = orders_.rowOf(orderId);
    if (file.state == ImportFile::Failed && row >= 0)
        report_->failures()->put({orderId, orders_.order(row).displayName(), file.sourcePath,
                                  file.fileName(), file.message});
    else
        report_->failures()->take(orderId, file.sourcePath);
}

/// What failed is tried again within a run, too.
void ImportFiles::retry(const QVector<RunFailure> &failures)
{
    QVector<ImportOrder> orders;
    for (const RunFailure &failure : failures) {
        const int row = orders_.rowOf(failure.order);
        if (row >= 0)
            orders.append(orders_.order(row));
    }
    if (orders.isEmpty())
        Toast::show(this, QStringLiteral("订单已不在列表中，请先查找"));
    if (orders.isEmpty() || chooser_->isBusy() || refusesForOtherTool(orders))
        return;
    abandonSearch();
    report_->takeAway();
    for (const RunFailure &failure : failures) {
        // As the retries before have left it.
        const int row = orders_.rowOf(failure.order);
        const int file = row < 0 ? -1 : orders_.order(row).failedFile(failure.key);
        if (file >= 0)
            run_->retry(orders_.order(row), file, branch_.identity());
    }
}

void ImportFiles::onRetryImportClicked(int row)
{
    const ImportOrder *order = shownOrder();
    if (!order || row < 0 || row >= order->files.size() ||
        order->files.at(row).state != ImportFile::Failed || chooser_->isBusy() ||
        refusesForOtherTool({*order}))
        return;
    abandonSearch();
    report_->takeAway();
    run_->retry(*order, row, branch_.identity());
}

void ImportFiles::onRegisterAgainClicked(int row)
{
    if (!orders_.hasRow(row) || !orders_.order(row).unregistered ||
        refusesForOtherTool({orders_.order(row)}))
        return;
    abandonSearch();
    run_->registerAgain(orders_.order(row), branch_.identity());
}

void ImportFiles::askForResubmit(const OrderIdentity &orderId, const QString &question,
                                 const QString &certificateError)
{
    if (!certificateError.isEmpty())
        showCertificateRefused(this, certificateError);
    MessageBox::warning(this, question, QMessageBox::Yes | QMessageBox::Cancel,
                        [this, orderId](QMessageBox::StandardButton answer) {
                            run_->answerResubmit(orderId, answer == QMessageBox::Yes);
                        });
}

void ImportFiles::onOrderRegistered(const OrderIdentity &orderId, const RegistrationResult &result)
{
    orders_.change(orders_.rowOf(orderId), [this, &result](ImportOrder &order) {
        order.unregistered = false;
        switch (mode_) {
        case ImportMode::Originals:
            order.numberYuanpian = result.images;
            order.numberYuanshidang = result.rawImages;
            break;
        case ImportMode::Retouched:
            order.numberJingxiu = result.images;
            break;
        }
    });
    marks_->refresh();
    if (photos_ && orderId == shownOrderId_)
        photos_->requestListing();
}

void ImportFiles::upImportPhotoInfo(const ImportOrder &order, const ImportFile &file)
{
    callService(this, importrequests::photoAction,
                importrequests::photoBody(mode_, order, file, branch_.identity()),
                [](const ServiceReply &reply) {
                    if (!reply.isSuccess())
                        qDebug() << "照片路径提交失败:" << reply.message;
                });
}
