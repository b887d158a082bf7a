#include "photoimport/window/tfhome.h"

#include "app/context/logging.h"
#include "files/pathgate.h"
#include "photoimport/imported/confirmedphotodeletion.h"
#include "photoimport/imported/tfhomephotos.h"
#include "photoimport/window/photochoicerestorer.h"
#include "photoimport/window/photoimportstarter.h"
#include "photoimport/window/tfchoicemarks.h"
#include "photoimport/window/tffilechooser.h"
#include "photoimport/window/tfhomeorders.h"
#include "photoimport/window/tfhomeorders_orderlistwidget.h"
#include "photoimport/window/tfimportbar.h"
#include "runreport/closingquestion.h"
#include "runreport/reportline.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/noticebar.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/tables/transferview.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"
#include "widgets/windows/sharedwidth.h"

#include <QClipboard>
#include <QDebug>
#include <QGuiApplication>
#include <QSet>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// How the window's width is divided.
constexpr int ordersShare = 3;
constexpr int photosShare = 2;
constexpr int progressIntervalMs = 250;
/// How long a closed window waits for the next of what the service still has to answer.
constexpr int nextAnswerMs = 10000;

QString closeQuestion(bool importing, int pendingRegistrations)
{
    QString question = importing ? QStringLiteral("正在导片，关闭窗口会停止导片") : QString();
    if (pendingRegistrations > 0) {
        question += importing ? QStringLiteral("。\n") : QString();
        question += QStringLiteral("还有 %1 项没有登记到服务端，关闭后会继续登记，"
                                   "服务端不再响应时放弃")
                        .arg(pendingRegistrations);
    }
    return question + QStringLiteral("，确认要关闭吗？");
}

} // namespace

tfhome::tfhome(QWidget *parent)
    : FramelessWindow(parent)
    , run_(&orders_)
    , orderPanel_(new tfhomeorders(&orders_))
    , photoPanel_(new tfhomephotos(&photos_))
    , notices_(new NoticeBar)
    , bar_(new tfimportbar)
    , overlay_(new LoadingOverlay(this))
    , chooser_(
          new tffilechooser(this, &orders_, overlay_, [this](int row) { return mayChange(row); }))
    , starter_(new PhotoImportStarter(
          this, &orders_, &run_,
          {[this](int row) { return mayChange(row); }, [this] { return orderPanel_->identity(); }}))
    , report_(new ReportLine(this, notices_))
    , marks_(new tfchoicemarks(this, {&orders_, &photos_, photoPanel_, notices_, chooser_}))
    , deletion_(new ConfirmedPhotoDeletion(this, &orders_, overlay_,
                                           [this](int row) { return mayChange(row); }))
    , restorer_(std::make_unique<PhotoChoiceRestorer>(
          PhotoChoiceRestorer::Place{this, &orders_, orderPanel_, &run_, overlay_, notices_}))
{
    qRegisterMetaType<OrderInfo>();
    qRegisterMetaType<PhotoInfo>();
    orders_.setPhotoMode(photorules::photoModeOf(AccountContext::photoMode));
    bar_->setPhotoMode(photorules::photoModeOf(AccountContext::photoMode));
    bar_->setWorkers(run_.pool()->maxWorkers());
    buildLayout();
    progressTimer_.setInterval(progressIntervalMs);
    connect(&progressTimer_, &QTimer::timeout, this, &tfhome::refreshState);
    lastAnswers_.setInterval(nextAnswerMs);
    lastAnswers_.setSingleShot(true);
    connect(&lastAnswers_, &QTimer::timeout, this, &tfhome::giveUpAnswers);
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
    connect(&folderOpener_, &SharedFolderOpener::finished, this,
            [this](bool success, const QString &error) {
                Q_UNUSED(success)
                if (!error.isEmpty())
                    Toast::show(this, error);
            });
    connect(overlay_, &LoadingOverlay::cancelled, this, [this] {
        chooser_->cancel();
        overlay_->hideOverlay();
        deletion_->cancel();
    });
    connectOrders();
    connectPhotos();
    connectBar();
    connectRun();
    connectDeletion();
    connectFailures();
}

tfhome::~tfhome()
{
    // The views outlive the models they show by a moment.
    disconnect(orderPanel_, nullptr, this, nullptr);
    disconnect(orderPanel_->table(), nullptr, this, nullptr);
}

void tfhome::buildLayout()
{
    halves_ = new SharedWidth(orderPanel_, photoPanel_, [](int width) {
        return width * ordersShare / (ordersShare + photosShare);
    });
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(halves_, 1);
    layout->addWidget(notices_);
    layout->addWidget(bar_);
    setContent(content);
}

void tfhome::connectOrders()
{
    tfhomeorders_OrderListWidget *table = orderPanel_->table();
    connect(table, &tfhomeorders_OrderListWidget::orderSelectionChanged, this,
            &tfhome::showSelectedOrder);
    connect(orderPanel_, &tfhomeorders::ordersChanged, this, &tfhome::showSelectedOrder);
    // A box shown while the drop is going on would freeze the program that the files come from.
    connect(
        table, &tfhomeorders_OrderListWidget::filesDroppedOnOrder, this,
        [this](int row, const QStringList &paths) { chooser_->take(row, paths, true); },
        Qt::QueuedConnection);
    table->addOrderAction(QStringLiteral("添加照片"), Qt::CTRL + Qt::Key_O,
                          [this](int row) { chooser_->addFiles(row); });
    table->addOrderAction(QStringLiteral("添加目录"), Qt::CTRL + Qt::SHIFT + Qt::Key_O,
                          [this](int row) { chooser_->addFolder(row); });
    table->addOrderAction(QStringLiteral("导入本单"), Qt::Key_Return,
                          [this](int row) { starter_->startOrder(row); });
    table->addOrderAction(QStringLiteral("打开目录"), Qt::CTRL + Qt::Key_E,
                          [this](int row) { openFolder(row); });
    table->addOrderAction(QStringLiteral("复制订单号"), QKeySequence::Copy,
                          [this](int row) { copyNumber(row); });
    table->addOrderAction(QStringLiteral("核对订单"), Qt::CTRL + Qt::Key_K, [this](int row) {
        const PhotoOrder &order = orders_.order(row);
        emit orderCheckRequested({order.identity(), order.info.orderPayForKey,
                                  order.displayNumber(), order.displayName(), order.folder()});
    });
}

void tfhome::connectPhotos()
{
    const auto shown = [this] { return orders_.rowOf(shownOrderId_); };
    connect(photoPanel_, &tfhomephotos::addFilesClicked, this,
            [this, shown] { chooser_->addFiles(shown()); });
    connect(photoPanel_, &tfhomephotos::addFolderClicked, this,
            [this, shown] { chooser_->addFolder(shown()); });
    connect(photoPanel_, &tfhomephotos::openFolderClicked, this,
            [this, shown] { openFolder(shown()); });
    connect(photoPanel_, &tfhomephotos::startClicked, this,
            [this, shown] { starter_->startOrder(shown()); });
    connect(photoPanel_, &tfhomephotos::retryClicked, this, &tfhome::retry);
    connect(photoPanel_, &tfhomephotos::removeClicked, this, &tfhome::removeFiles);
    connect(photoPanel_, &tfhomephotos::deleteClicked, this, &tfhome::deletePhotos);
    connect(
        photoPanel_, &tfhomephotos::filesDropped, this,
        [this, shown](const QStringList &paths) { chooser_->take(shown(), paths, true); },
        Qt::QueuedConnection);
    connect(chooser_, &tffilechooser::filesChanged, this, [this](const OrderIdentity &orderId) {
        noteFailures(orderId);
        if (orderId == shownOrderId_)
            showSelectedOrder();
    });
    connect(photoPanel_->thumbnails(), &QThread::finished, this, &tfhome::endClosing);
}

void tfhome::connectBar()
{
    connect(bar_, &tfimportbar::photoModeChosen, this, &tfhome::choosePhotoMode);
    connect(bar_, &tfimportbar::workersChosen, this,
            [this](int count) { run_.pool()->setMaxWorkers(count); });
    connect(bar_, &tfimportbar::startClicked, this, [this] {
        if (overlay_->isVisible())
            return; // the shortcut reaches us while files are being looked at
        if (run_.isImporting())
            run_.stop();
        else
            starter_->startAll();
    });
    connect(bar_, &tfimportbar::cardCheckClicked, this, &tfhome::cardCheckRequested);
    connect(bar_, &tfimportbar::pauseClicked, this, [this] {
        if (run_.pool()->isPaused())
            run_.pool()->resumeAllImport();
        else
            run_.pool()->pauseAllImport();
        rate_.hold();
        refreshState();
    });
}

void tfhome::connectRun()
{
    connect(starter_, &PhotoImportStarter::beginning, this, [this] {
        rate_.clear();
        clock_.start();
    });
    connect(starter_, &PhotoImportStarter::started, this, [this] {
        showSelectedOrder();
        for (const PhotoOrder &order : orders_.orders())
            noteFailures(order.identity());
    });
    connect(&run_, &PhotoImportRun::fileChanged, this, &tfhome::showFile);
    connect(&run_, &PhotoImportRun::fileChanged, &lastAnswers_, [this] {
        if (lastAnswers_.isActive())
            lastAnswers_.start(); // the service is slow, but it goes on
    });
    connect(&run_, &PhotoImportRun::stateChanged, this, &tfhome::refreshState);
    connect(&run_, &PhotoImportRun::refused, this,
            [this](const QString &message, const QString &path) {
                tell(message.contains(path) ? message : message + QStringLiteral("\n\n") + path);
            });
    connect(&run_, &PhotoImportRun::ended, this, &tfhome::announceEnd);
    connect(&run_, &PhotoImportRun::recorded, this, &tfhome::report);
    connect(&run_, &PhotoImportRun::countsStale, orderPanel_, &tfhomeorders::refreshImportCounts);
    connect(&run_, &PhotoImportRun::workersEnded, this, &tfhome::endClosing);
}

void tfhome::connectFailures()
{
    connect(report_->failures(), &FailureModel::countChanged, this, [this](int failures) {
        bar_->progress()->setFailures(failures);
        if (!run_.isBusy())
            setWork(report_->failures()->workAtRest());
    });
    connect(bar_->progress(), &TransferView::failuresClicked, report_->page(), &RunPage::open);
    report_->page()->setRetry(
        {[this](const QVector<RunFailure> &failures) { retryFailed(failures); },
         [this] { starter_->retryAll(); },
         {}});
}

void tfhome::connectDeletion()
{
    connect(deletion_, &ConfirmedPhotoDeletion::asking, this,
            [this] { photoPanel_->thumbnails()->want({}, 0); });
    connect(deletion_, &ConfirmedPhotoDeletion::answered, this,
            [this](const OrderIdentity &orderId) {
                if (orderId == shownOrderId_)
                    showSelectedOrder(); // which asks for the thumbnails that are missing now
                endClosing();
            });
    connect(deletion_, &ConfirmedPhotoDeletion::unanswered, this,
            [this](const OrderIdentity &orderId) {
                if (orderId == shownOrderId_)
                    showSelectedOrder();
                orderPanel_->refreshImportCounts();
                endClosing();
            });
    connect(deletion_, &ConfirmedPhotoDeletion::removed, this, [this] {
        restorer_->lookForLeftPhotos();
        endClosing();
    });
}

void tfhome::goTo(const OrderPlace &place)
{
    orderPanel_->goTo(place);
}

void tfhome::showEvent(QShowEvent *event)
{
    FramelessWindow::showEvent(event);
    if (!opened_) {
        opened_ = true;
        orderPanel_->table()->openColumns();
        halves_->open(QStringLiteral("photoimport"));
        restorer_->open();
        orderPanel_->open();
    }
}

// Choosing orders and files.

void tfhome::showSelectedOrder()
{
    marks_->refresh();
    const int row = orderPanel_->table()->selectedOrder();
    if (!orders_.hasRow(row)) {
        shownOrderId_ = {};
        photos_.show(nullptr, orders_.photoMode());
        photoPanel_->showOrder({});
        marks_->setShown({});
        return;
    }
    const PhotoOrder &order = orders_.order(row);
    const auto show = [&] { photos_.show(&order, orders_.photoMode()); };
    if (shownOrderId_ == order.identity())
        photoPanel_->keepPlaceWhile(show);
    else
        show();
    shownOrderId_ = order.identity();
    photoPanel_->showOrder(order.displayName());
    marks_->setShown(shownOrderId_);
}

bool tfhome::mayChange(int row)
{
    if (!orders_.hasRow(row) || overlay_->isVisible())
        return false;
    if (!run_.isQueuedOrActive(row))
        return true;
    Toast::show(this, QStringLiteral("该订单正在导片，请等待完成或先停止"));
    return false;
}

void tfhome::removeFiles(const QVector<int> &photoRows)
{
    const int row = orders_.rowOf(shownOrderId_);
    if (!mayChange(row))
        return;
    QVector<int> indexes;
    for (const int photoRow : photoRows) {
        const PanelPhoto &photo = photos_.photo(photoRow);
        if (photo.file.registration == RegistrationState::Pending)
            Toast::show(this, QStringLiteral("正在登记的文件不能移出"));
        else if (photo.fileIndex >= 0)
            indexes.append(photo.fileIndex);
    }
    if (indexes.isEmpty())
        return;
    orders_.removeFiles(row, indexes);
    noteFailures(shownOrderId_);
    showSelectedOrder();
}

void tfhome::choosePhotoMode(PhotoMode mode)
{
    AccountContext::photoMode = int(mode);
    orders_.setPhotoMode(mode);
    showSelectedOrder();
}

void tfhome::openFolder(int row)
{
    if (!orders_.hasRow(row))
        return;
    const PhotoOrder &order = orders_.order(row);
    const QString folder = order.folder();
    const pathgate::Refusal refusal = pathgate::refusalOfImport(
        order.displayName(), order.info.importPath, order.info.importPublicPath);
    if (folder.isEmpty())
        Toast::show(this, QStringLiteral("该订单没有导片路径"));
    else if (refusal.isRefused())
        tell(refusal.text());
    else
        folderOpener_.open(folder);
}

void tfhome::copyNumber(int row)
{
    if (!orders_.hasRow(row))
        return;
    QGuiApplication::clipboard()->setText(orders_.order(row).displayNumber());
    Toast::show(this, QStringLiteral("订单号已复制"));
}

// Importing.

/// Also four times a second while something goes on.
void tfhome::refreshState()
{
    if (run_.isBusy())
        report_->takeAway();
    bar_->setRunning(run_.isImporting(), run_.pendingRegistrations() > 0);
    bar_->setPaused(run_.pool()->isPaused());
    orderPanel_->setImporting(run_.isBusy());
    marks_->setImporting(run_.isBusy());
    const TransferProgress progress = run_.progress();
    if (run_.isImporting() && run_.pool()->isPaused()) {
        bar_->progress()->showPaused(progress);
        setWork(progress.work(WorkProgress::State::Paused));
    } else if (run_.isImporting()) {
        rate_.add(clock_.elapsed(), progress);
        bar_->progress()->showProgress(progress, rate_);
        setWork(progress.work(WorkProgress::State::Running));
    } else if (run_.isBusy()) {
        bar_->progress()->showRest(
            QStringLiteral("正在登记，剩余 %1").arg(run_.pendingRegistrations()));
        setWork(progress.work(WorkProgress::State::Running));
    } else {
        bar_->progress()->hide();
        setWork(report_->failures()->workAtRest());
        progressTimer_.stop();
        endClosing();
        return;
    }
    if (!progressTimer_.isActive())
        progressTimer_.start();
}

void tfhome::showFile(const OrderIdentity &orderId, int index)
{
    const int row = orders_.rowOf(orderId);
    const SourceFile &file = orders_.files(row).at(index);
    if (orderId == shownOrderId_)
        photos_.updateFile(index, file);
    noteFailure(orders_.order(row), file);
}

void tfhome::noteFailure(const PhotoOrder &order, const SourceFile &file)
{
    const QString failure = file.wholeFailure();
    if (failure.isEmpty())
        report_->failures()->take(order.identity(), file.path);
    else
        report_->failures()->put(
            {order.identity(), order.displayName(), file.path, file.name, failure});
}

/// After files were added, taken away or reset.
void tfhome::noteFailures(const OrderIdentity &orderId)
{
    report_->failures()->takeOrder(orderId);
    const int row = orders_.rowOf(orderId);
    if (row < 0)
        return;
    for (const SourceFile &file : orders_.files(row))
        noteFailure(orders_.order(row), file);
}

void tfhome::retryFailed(const QVector<RunFailure> &failures)
{
    QVector<int> rows;
    QSet<QString> paths;
    for (const RunFailure &failure : failures) {
        const int row = orders_.rowOf(failure.order);
        if (row >= 0 && !rows.contains(row))
            rows.append(row);
        paths.insert(failure.key);
    }
    if (rows.isEmpty()) {
        Toast::show(this, QStringLiteral("订单已不在列表中，请先查找"));
    } else if (rows.size() > 1) {
        starter_->retryOrders(rows);
    } else {
        QSet<int> indexes;
        const QVector<SourceFile> &files = orders_.files(rows.first());
        for (int index = 0; index < files.size(); ++index) {
            if (paths.contains(files.at(index).path))
                indexes.insert(index);
        }
        starter_->retry(rows.first(), indexes);
    }
}

void tfhome::announceEnd(const RunOutcome &outcome)
{
    if (outcome.isGood())
        MessageBox::information(this, outcome.text());
    else
        tell(outcome.text());
}

void tfhome::report()
{
    QHash<OrderIdentity, QVector<OrderReport::Failure>> failures;
    for (const PhotoOrder &order : orders_.orders()) {
        const auto failed = photoorders::failedForms(order, orders_.photoMode());
        for (const photoorders::FailedForms &file : failed)
            failures[order.identity()].append({file.file, file.reason});
    }
    report_->tellOf({ledger::Work::PhotoImport, failures, [this] { starter_->retryAll(); }, true});
}

void tfhome::tell(const QString &problem)
{
    MessageBox::warning(this, problem);
}

void tfhome::retry(const QVector<int> &photoRows)
{
    QSet<int> indexes;
    for (const int photoRow : photoRows)
        indexes.insert(photos_.photo(photoRow).fileIndex);
    starter_->retry(orders_.rowOf(shownOrderId_), indexes);
}

// Deleting.

void tfhome::deletePhotos(const QVector<int> &photoRows)
{
    QVector<PanelPhoto> chosen;
    for (const int photoRow : photoRows)
        chosen.append(photos_.photo(photoRow));
    deletion_->deletePhotos(orders_.rowOf(shownOrderId_), chosen, orderPanel_->identity());
}

// Closing.

FramelessWindow::CloseAnswer tfhome::closeRequested()
{
    QStringList questions;
    QStringList subjects;
    if (run_.isBusy()) {
        questions << closeQuestion(run_.isImporting(), run_.pendingRegistrations());
        subjects << (run_.isImporting() ? QStringLiteral("import")
                                        : QStringLiteral("registrations"));
    }
    if (deletion_->isActive()) {
        questions << ConfirmedPhotoDeletion::closingQuestion();
        subjects << QStringLiteral("deletion");
    }
    if (!questions.isEmpty() &&
        !agreedToClose(closingQuestion(questions.join(QLatin1Char('\n')), run_.isImporting()),
                       subjects.join(QLatin1Char(' '))))
        return CloseAnswer::Refuse;
    chooser_->cancel();
    if (run_.isImporting())
        run_.stop();
    orderPanel_->abandon();
    photoPanel_->thumbnails()->stop();
    // What the service was asked and not yet answered.
    if (run_.isBusy() || deletion_->isActive())
        lastAnswers_.start();
    return mayEnd() ? CloseAnswer::Close : CloseAnswer::CloseLater;
}

void tfhome::giveUpAnswers()
{
    qCWarning(lcTessavo) << "closed without an answer; not registered:"
                         << run_.pendingRegistrations();
    deletion_->cancel();
    run_.cancelRegistrations();
    endClosing();
}

bool tfhome::mayEnd() const
{
    return !run_.isBusy() && !run_.hasLiveWorkers() && !deletion_->isActive() &&
           !photoPanel_->thumbnails()->isRunning();
}

void tfhome::endClosing()
{
    if (isClosingLater() && mayEnd())
        finishClosing();
}
