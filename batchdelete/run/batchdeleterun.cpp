#include "batchdelete/run/batchdeleterun.h"

#include "batchdelete/rules/deletionrequests.h"
#include "batchdelete/rules/deletionrules.h"
#include "batchdelete/run/batchdeletethread.h"
#include "batchdelete/run/deletiontexts.h"
#include "batchdelete/run/emptiedfolder.h"
#include "batchdelete/run/filescanthread.h"
#include "ledger/ledger.h"
#include "tasks/background.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace {

constexpr int closingMs = 5000;
constexpr int declinesBeforePause = 2;

bool mayRetry(const BatchDeleteFileInfo &file)
{
    return file.state == BatchDeleteFileInfo::NotReported || file.mayRetryDelete();
}

/// What is kept has not been deleted, and whoever looks for what is left is to find it.
QVector<BatchDeleteFileInfo> withKeptAsFailed(QVector<BatchDeleteFileInfo> files)
{
    for (BatchDeleteFileInfo &file : files) {
        if (file.kept)
            file.state = BatchDeleteFileInfo::Failed;
    }
    return files;
}

/// What an order is told apart by; its files may be a million.
BatchDeleteOrderInfo withoutFiles(BatchDeleteOrderInfo order)
{
    order.setFiles({});
    return order;
}

} // namespace

BatchDeleteRun::BatchDeleteRun(QObject *parent)
    : QObject(parent), announcement_(this), reporter_(this), closingTimer_(this)
{
    qRegisterMetaType<ServiceReply>();
    qRegisterMetaType<DeletionSummary>();
    closingTimer_.setSingleShot(true);
    closingTimer_.setInterval(closingMs);
    connect(&closingTimer_, &QTimer::timeout, this, [this] {
        for (BatchdeleteThread *thread : qAsConst(threads_))
            qWarning() << thread->objectName() << "任务未能及时结束，等待系统返回";
        reporter_.giveUp();
    });
}

BatchDeleteRun::~BatchDeleteRun()
{
    for (BatchdeleteThread *thread : qAsConst(threads_)) {
        thread->disconnect(this);
        thread->requestStop();
        thread->wait();
        delete thread;
    }
}

void BatchDeleteRun::begin(const QVector<BatchDeleteOrderInfo> &orders,
                           const orderqueries::Identity &identity, const QStringList &publicRoots)
{
    orders_ = orders;
    identity_ = identity;
    publicRoots_ = publicRoots;
    current_ = -1;
    pending_.clear();
    skipped_ = 0;
    stopping_ = declined_ = retrying_ = false;
    declinedInARow_ = 0;
    reporter_.startAsking();
    refusals_.clear();
    for (const BatchDeleteOrderInfo &order : orders) {
        ordersatwork::Claim claim;
        const auto conflict =
            ordersatwork::claim({order.identity()}, QStringLiteral("批量删除"), &claim);
        claims_.push_back(std::move(claim));
        refusals_.append(conflict ? ordersatwork::refusal(order.displayNumber(), conflict->tool)
                                  : QString());
    }
}

bool BatchDeleteRun::start(const QVector<BatchDeleteOrderInfo> &orders,
                           const orderqueries::Identity &identity, const QStringList &publicRoots)
{
    if (isBusy() || closing_ || orders.isEmpty())
        return false;
    begin(orders, identity, publicRoots);
    phase_ = Phase::Checking;
    startNextOrder();
    return true;
}

bool BatchDeleteRun::retry(const BatchDeleteOrderInfo &order, const QVector<int> &indexes,
                           const orderqueries::Identity &identity, const QStringList &publicRoots)
{
    if (isBusy() || closing_)
        return false;
    if (!orderqueries::mayWorkOn(order.identity(), identity)) {
        emit orderNoted(order.identity(), orderqueries::otherBranchText(order.displayNumber()));
        return false;
    }
    QVector<int> pending;
    QVector<BatchDeleteFileInfo> unannounced;
    for (const int index : indexes) {
        if (index < 0 || index >= order.files().size() || !mayRetry(order.files().at(index)))
            continue;
        pending.append(index);
        if (order.files().at(index).mayRetryDelete() && !order.files().at(index).announced)
            unannounced.append(order.files().at(index));
    }
    if (pending.isEmpty())
        return false;
    std::reverse(pending.begin(), pending.end());
    begin({order}, identity, publicRoots);
    retrying_ = true;
    current_ = 0;
    if (!refusals_.first().isEmpty()) {
        note(refusals_.first());
        finish(DeletionSummary::End::Completed);
        return true;
    }
    pending_ = pending;
    phase_ = Phase::Checking;
    lookAtFolder([this, unannounced](const QString &) { // links are looked for with each file
        if (unannounced.isEmpty())
            processNextFile();
        else
            announce(unannounced);
    });
    return true;
}

TransferProgress BatchDeleteRun::progress() const
{
    if (current_ < 0 || current_ >= orders_.size())
        return {};
    const BatchDeleteOrderInfo &order = orders_.at(current_);
    TransferProgress progress{order.succeeded() + order.failed(), order.files().size(),
                              order.bytesDone(), order.bytes()};
    progress.order = order.displayNumber() + QLatin1Char(' ') + order.customers();
    if (file_ >= 0 && file_ < order.files().size())
        progress.file = order.files().at(file_).shortPath();
    return progress;
}

void BatchDeleteRun::stop()
{
    if (stopping_ && phase_ == Phase::Reporting)
        reporter_.giveUp();
    else
        endSoon();
}

void BatchDeleteRun::close()
{
    closing_ = true;
    closingTimer_.start();
    endSoon();
    reporter_.stopAsking();
}

void BatchDeleteRun::endSoon()
{
    if (phase_ == Phase::Idle)
        return;
    stopping_ = true;
    if (phase_ == Phase::Checking || phase_ == Phase::Announcing) {
        if (!retrying_)
            note(QStringLiteral("已停止，没有删除任何文件"));
        finish(DeletionSummary::End::Stopped);
    } else if (phase_ == Phase::Paused) {
        processNextFile();
    }
}

void BatchDeleteRun::answerPause(bool goOn)
{
    if (phase_ != Phase::Paused)
        return;
    if (goOn)
        reporter_.stopAsking();
    else
        stopping_ = true;
    processNextFile();
}

bool BatchDeleteRun::isAt(const OrderIdentity &order) const
{
    return isBusy() && current_ >= 0 && orders_.at(current_).identity() == order;
}

void BatchDeleteRun::startNextOrder()
{
    if (stopping_ || declined_) {
        finish(stopping_ ? DeletionSummary::End::Stopped : DeletionSummary::End::Declined);
        return;
    }
    if (current_ + 1 == orders_.size()) {
        finish(DeletionSummary::End::Completed);
        return;
    }
    ++current_;
    phase_ = Phase::Checking;
    order().note.clear();
    qDebug() << "获取文件照片信息";
    emit orderStarted(order().identity());
    listFiles(order().unreportedFiles());
    if (!orderqueries::mayWorkOn(order().identity(), identity_)) {
        skipOrder(orderqueries::otherBranchText(order().displayNumber()));
        return;
    }
    if (!refusals_.at(current_).isEmpty()) {
        skipOrder(refusals_.at(current_));
        return;
    }
    Ledger::current().askWhoElseWorksOn(
        order().identity(), this, step_.only([this](const QVector<ledger::Entry> &others) {
            if (!others.isEmpty()) {
                skipOrder(deletiontexts::elsewhereText(others.constFirst().run));
                return;
            }
            // Time has passed since the plan was made.
            lookAtFolder([this](const QString &refusal) {
                if (refusal.isEmpty())
                    scanOrder();
                else
                    skipOrder(refusal);
            });
        }));
}

/// Hands \a next why the order's folder must not be entered, empty when it may be.
void BatchDeleteRun::lookAtFolder(const std::function<void(const QString &refusal)> &next)
{
    struct Look
    {
        QString refusal;
        QByteArray holder;
    };
    onDisk(
        this, order().netPath,
        [path = order().netPath, publicRoots = publicRoots_] {
            return Look{deletionrules::linkRefusal(path, publicRoots),
                        emptiedfolder::holderOf(path)};
        },
        step_.only([this, next](const Look &look) {
            holder_ = look.holder;
            next(look.refusal);
        }));
}

void BatchDeleteRun::scanOrder()
{
    scan_ = std::make_unique<FileScanThread>();
    connect(scan_.get(), &FileScanThread::progress, this,
            [this](int count) { emit scanProgress(order().identity(), count); });
    connect(scan_.get(), &FileScanThread::finished, this, &BatchDeleteRun::onScanned);
    scan_->scan(order().netPath);
}

void BatchDeleteRun::onScanned(const FileScanResult &result)
{
    scan_.release()->deleteLater(); // it is the one that calls
    if (!result.success) {
        skipOrder(result.errorText);
        return;
    }
    for (int index = result.files.size() - 1; index >= 0; --index) {
        if (!result.files.at(index).kept)
            pending_.append(index);
    }
    phase_ = Phase::Announcing;
    listFiles(withKeptAsFailed(result.files) + order().files());
    if (pending_.isEmpty())
        skipOrder(QStringLiteral("目录中没有可删除的文件"));
    else
        announce(order().files());
}

void BatchDeleteRun::announce(const QVector<BatchDeleteFileInfo> &files)
{
    phase_ = Phase::Announcing; // of a retry, too
    struct Announcement
    {
        QByteArray body;
        DeletionRecording::Rows rows;
    };
    onProcessor(
        this,
        [identity = identity_, run = recording_.run(identity_), order = withoutFiles(order()),
         files] {
            return Announcement{deletionrequests::announceBody(identity, order.orderPhotoId, files),
                                DeletionRecording::enter(run, order, files)};
        },
        step_.only([this, files](const Announcement &made) {
            announcing_ = made.rows;
            if (retrying_)
                recording_.addRows(order().identity(), files, made.rows);
            else
                recording_.setRows(order().identity(), made.rows);
            announcement_.start(deletionrequests::announceAction, made.body,
                                [this](const ServiceReply &reply) { onAnnounced(reply); });
        }));
}

void BatchDeleteRun::onAnnounced(const ServiceReply &reply)
{
    if (reply.isSuccess()) {
        DeletionRecording::announced(announcing_);
        processNextFile();
        return;
    }
    if (!retrying_)
        note(QStringLiteral("删除前提交失败，没有删除任何文件"));
    emit announcementFailed(reply);
    finish(DeletionSummary::End::NotAnnounced);
}

void BatchDeleteRun::processNextFile()
{
    if (!pending_.isEmpty() && !stopping_) {
        file_ = pending_.takeLast();
        const BatchDeleteFileInfo &file = order().files().at(file_);
        if (file.state == BatchDeleteFileInfo::NotReported)
            report(file);
        else
            deleteFile();
        return;
    }
    if (retrying_) {
        finish(DeletionSummary::End::Completed);
        return;
    }
    if (pending_.isEmpty())
        emit orderDone(order().identity());
    startNextOrder();
}

void BatchDeleteRun::deleteFile()
{
    phase_ = Phase::Deleting;
    BatchDeleteFileInfo file = order().files().at(file_);
    file.state = BatchDeleteFileInfo::Deleting;
    file.reason.clear();
    file.announced = true; // otherwise nothing would be deleted
    setFile(file_, file);
    auto *thread =
        new BatchdeleteThread(order().orderPhotoId, file, file.fullPath(),
                              deletionrules::foldersAbove(order().netPath, publicRoots_));
    threads_.append(thread);
    connect(thread, &BatchdeleteThread::fileProcessed, this,
            [this](const QString &orderPhotoId, const BatchDeleteFileInfo &processed) {
                Q_UNUSED(orderPhotoId) // it is the current one: one file at a time
                onFileProcessed(processed);
            });
    connect(thread, &QThread::finished, this, [this, thread] { threadEnded(thread); });
    thread->start();
}

void BatchDeleteRun::onFileProcessed(BatchDeleteFileInfo file)
{
    const bool unreachable = file.state == BatchDeleteFileInfo::Unreachable;
    if (file.state == BatchDeleteFileInfo::Deleted && !file.missing) {
        report(file);
        return;
    }
    if (file.state > BatchDeleteFileInfo::InUse)
        file.state = BatchDeleteFileInfo::Failed;
    if (!unreachable && !file.missing) {
        setFailed(file);
        processNextFile();
        return;
    }
    // One file that is gone is deleted. Where the whole folder is gone, so may be the disk under
    // it, with every file still on it.
    onDisk(
        this, order().netPath,
        [path = order().netPath, holder = holder_] { return emptiedfolder::lookFor(path, holder); },
        step_.only([this, file, unreachable](const emptiedfolder::Look &look) {
            if (look.state == emptiedfolder::State::There && unreachable) {
                setFailed(file);
                processNextFile();
            } else if (look.state != emptiedfolder::State::Unreachable && !unreachable) {
                report(file);
            } else {
                onFolderGone(file, unreachable ? emptiedfolder::unreachableText() : look.reason);
            }
        }));
}

/// The files that are left fail for the same reason: each of them could wait for the dead share.
void BatchDeleteRun::onFolderGone(BatchDeleteFileInfo file, const QString &reason)
{
    file.missing = false;
    file.state = BatchDeleteFileInfo::Failed;
    file.reason = reason;
    recording_.failed(order().identity(), file_, file);
    QVector<BatchDeleteFileInfo> files = order().files();
    files[file_] = file;
    for (const int index : qAsConst(pending_)) {
        BatchDeleteFileInfo &left = files[index];
        if (left.state == BatchDeleteFileInfo::NotReported)
            continue;
        left.state = BatchDeleteFileInfo::Failed;
        left.reason = file.reason;
        left.announced = true;
    }
    listFiles(files);
    pending_.clear();
    note(QStringLiteral("订单目录无法访问，其余文件没有删除"));
    processNextFile();
}

void BatchDeleteRun::report(const BatchDeleteFileInfo &file)
{
    phase_ = Phase::Reporting;
    if (file.state == BatchDeleteFileInfo::Deleted)
        recording_.deleted(order().identity(), file_, file);
    if (closing_)
        closingTimer_.start();
    reporter_.deletePost_one(identity_, order().orderPhotoId, file,
                             [this, file](bool reported) { onReported(file, reported); });
}

void BatchDeleteRun::onReported(BatchDeleteFileInfo file, bool reported)
{
    file.state = reported ? BatchDeleteFileInfo::Deleted : BatchDeleteFileInfo::NotReported;
    file.reason = reported ? QString() : reporter_.failure();
    declined_ = declined_ || !reported;
    declinedInARow_ = reported ? 0 : declinedInARow_ + 1;
    setFile(file_, file);
    recording_.reported(order().identity(), file_, file);
    // One by one the files of a large order would ask again and again.
    if (declinedInARow_ == declinesBeforePause && !pending_.isEmpty() && !stopping_ && !closing_) {
        phase_ = Phase::Paused;
        emit pausedForDeclines();
    } else {
        processNextFile();
    }
}

void BatchDeleteRun::listFiles(const QVector<BatchDeleteFileInfo> &files)
{
    order().setFiles(files);
    emit filesListed(order().identity(), files);
}

void BatchDeleteRun::setFile(int index, const BatchDeleteFileInfo &file)
{
    order().setFile(index, file);
    emit fileChanged(order().identity(), index, file);
}

/// The file at hand, which is there still.
void BatchDeleteRun::setFailed(const BatchDeleteFileInfo &file)
{
    setFile(file_, file);
    recording_.failed(order().identity(), file_, file);
}

void BatchDeleteRun::note(const QString &text)
{
    order().note = text;
    emit orderNoted(order().identity(), text);
}

void BatchDeleteRun::skipOrder(const QString &reason)
{
    ++skipped_;
    note(reason);
    emit orderDone(order().identity());
    startNextOrder();
}

void BatchDeleteRun::finish(DeletionSummary::End end)
{
    step_.abandon(); // what still goes on behind the scenes is not wanted any more
    scan_.reset();
    announcement_.cancel();
    recording_.end();
    phase_ = Phase::Idle;
    file_ = -1;
    pending_.clear();
    const DeletionSummary result = summary(end);
    if (!std::exchange(retrying_, false))
        emit finished(result);
    endIfIdle();
}

DeletionSummary BatchDeleteRun::summary(DeletionSummary::End end) const
{
    DeletionSummary summary;
    summary.end = end;
    summary.orders = orders_.size();
    summary.untouched = orders_.size() - current_ - 1;
    summary.skipped = skipped_;
    for (const BatchDeleteOrderInfo &order : orders_) {
        summary.deleted += order.succeeded();
        summary.failed += order.failed();
    }
    return summary;
}

void BatchDeleteRun::threadEnded(BatchdeleteThread *thread)
{
    threads_.removeOne(thread);
    thread->deleteLater();
    endIfIdle();
}

void BatchDeleteRun::endIfIdle()
{
    if (isBusy())
        return;
    closingTimer_.stop();
    claims_.clear();
    emit ended();
}
