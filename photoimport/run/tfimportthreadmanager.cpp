#include "photoimport/run/tfimportthreadmanager.h"

#include "tasks/background.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace {

constexpr int completionCheckMs = 1000;
// How soon to deal after what happened.
constexpr int afterStartMs = 10; // or a resume, a change of the worker count, a worker's end
constexpr int afterPassMs = 50;  // or the report of a photo
constexpr int afterStallMs = 100;
constexpr int whenBusyMs = 500;
/// Photos that are recorded before they are dealt out: many, since each time the ledger is waited
/// for.
constexpr int recordedAtOnce = 1024;

void log(const QString &line)
{
    qDebug().noquote() << line;
}

void logStep(int step)
{
    log(QStringLiteral("assignNextTask - %1").arg(step));
}

} // namespace

tfimportthreadmanager::tfimportthreadmanager(QObject *parent)
    : tfimportthreadmanager(PhotoOperations::standard(&decoded_), parent)
{
}

tfimportthreadmanager::tfimportthreadmanager(PhotoOperations operations, QObject *parent)
    : QObject(parent), operations_(std::move(operations))
{
    qRegisterMetaType<OrderInfo>();
    qRegisterMetaType<PhotoInfo>();
    qRegisterMetaType<JobFailure>();
    dealTimer_.setSingleShot(true);
    connect(&dealTimer_, &QTimer::timeout, this, &tfimportthreadmanager::assignNextTask);
    connect(&completionTimer_, &QTimer::timeout, this, &tfimportthreadmanager::checkTaskCompletion);
    completionTimer_.start(completionCheckMs);
    createWorkers();
}

tfimportthreadmanager::~tfimportthreadmanager()
{
    stopAllImport();
    qDeleteAll(workers_);
    qDeleteAll(retired_);
}

// --- workers

void tfimportthreadmanager::createWorkers()
{
    for (int id = 0; id < workerCount_; ++id) {
        auto *worker = new tfimportworker(id, operations_, this);
        connect(worker, &tfimportworker::failureExplained, this,
                &tfimportthreadmanager::onFailureExplained, Qt::QueuedConnection);
        connect(worker, &tfimportworker::photoImported, this,
                &tfimportthreadmanager::onPhotoImported, Qt::QueuedConnection);
        connect(worker, &tfimportworker::workerFinished, this,
                &tfimportthreadmanager::onWorkerFinished, Qt::QueuedConnection);
        connect(worker, &QThread::finished, this, &tfimportthreadmanager::onThreadEnded,
                Qt::QueuedConnection);
        worker->start(QThread::InheritPriority);
        workers_.append(worker);
    }
    log(QStringLiteral("初始化 %1 个导片工作线程").arg(workerCount_));
}

/// Tells the workers to end and lets go of them. They are not waited for: one may be in the middle
/// of a large photo or of a share that has gone away.
void tfimportthreadmanager::retireWorkers()
{
    for (tfimportworker *worker : qAsConst(workers_))
        worker->stop();
    stopping_ = true;
    retired_ += workers_;
    workers_.clear();
}

void tfimportthreadmanager::onThreadEnded()
{
    const auto ended = std::partition(retired_.begin(), retired_.end(),
                                      [](tfimportworker *worker) { return worker->isRunning(); });
    qDeleteAll(ended, retired_.end());
    retired_.erase(ended, retired_.end());
    if (stopping_ && !hasLiveWorkers()) {
        stopping_ = false;
        emit workersEnded();
    }
}

bool tfimportthreadmanager::hasLiveWorkers() const
{
    const auto finishing = [](tfimportworker *worker) {
        return worker->isRunning() && !worker->takesJobs();
    };
    return std::any_of(workers_.cbegin(), workers_.cend(), finishing) ||
           std::any_of(retired_.cbegin(), retired_.cend(), finishing);
}

void tfimportthreadmanager::setMaxWorkers(int count)
{
    const int wanted = std::clamp(count, 1, mostWorkers);
    if (wanted == workerCount_)
        return;
    const bool wasRunning = running_;
    if (wasRunning)
        stopAllImport();
    retireWorkers();
    workerCount_ = wanted;
    createWorkers();
    if (wasRunning)
        scheduleDealing(afterStartMs);
}

// --- starting and stopping

void tfimportthreadmanager::startImportOrder(const OrderInfo &order)
{
    enqueueStart({{order}, false});
}

void tfimportthreadmanager::startImportAllOrders(const QList<OrderInfo> &orders)
{
    enqueueStart({orders, true});
}

void tfimportthreadmanager::enqueueStart(const Start &start)
{
    starts_.append(start);
    if (starts_.size() == 1)
        checkNextStart();
}

void tfimportthreadmanager::checkNextStart()
{
    QStringList paths;
    for (const OrderInfo &order : qAsConst(starts_.first().orders))
        paths.append(order.importPath.isEmpty() ? order.importPublicPath : order.importPath);
    onDisk(
        this, paths,
        [orders = starts_.first().orders] { return photorules::validatePaths(orders); },
        [this, round = round_](const photorules::PathProblem &problem) {
            if (round.isCurrent())
                onPathsChecked(problem);
        });
}

void tfimportthreadmanager::onPathsChecked(const photorules::PathProblem &problem)
{
    const Start start = starts_.takeFirst();
    if (!starts_.isEmpty())
        checkNextStart();
    if (!problem.isProblem()) {
        queueStart(start);
        return;
    }
    log((start.batch ? QStringLiteral("批量导片路径验证失败: %1, 路径: %2")
                     : QStringLiteral("路径验证失败: %1, 路径: %2"))
            .arg(problem.error, problem.path));
    emit pathErrorOccurred(problem.error, problem.path);
}

void tfimportthreadmanager::queueStart(const Start &start)
{
    if (!std::all_of(workers_.cbegin(), workers_.cend(),
                     [](tfimportworker *worker) { return worker->takesJobs(); })) {
        log(QStringLiteral("检测到已停止的工作线程，重新初始化"));
        retireWorkers();
        createWorkers();
    }
    running_ = true;
    for (const OrderInfo &order : start.orders) {
        auto known = std::make_shared<OrderInfo>(order);
        known->importPath = photorules::importFolderOf(order);
        ImportTask task;
        task.order = known;
        task.taskId = task.firstTaskId = nextTaskId_++;
        task.total = order.photos.size();
        queue_.append(task);
        OrderRun run;
        run.orderId = order.identity();
        run.recording = recording_;
        runs_.insert(task.taskId, run);
        if (!start.batch) {
            log(QStringLiteral("添加导片任务: %1 (包含 %2 张照片)")
                    .arg(order.orderPayForKey, QString::number(task.total)));
        }
    }
    if (start.batch) {
        log(QStringLiteral("添加批量导片任务: %1 个订单").arg(start.orders.size()));
        log(QStringLiteral("startImportAllOrders---111"));
    }
    scheduleDealing(afterStartMs);
}

void tfimportthreadmanager::stopAllImport()
{
    running_ = false;
    preparing_ = false;
    round_ = rounds_.next();
    dealTimer_.stop();
    starts_.clear();
    queue_.clear();
    active_.clear();
    progress_.clear();
    withdrawCopies();
    runs_.clear();
    for (tfimportworker *worker : qAsConst(workers_))
        worker->stop();
    stopping_ = true;
    decoded_.clear();
    log(QStringLiteral("停止所有导片任务"));
}

void tfimportthreadmanager::pauseAllImport()
{
    paused_ = true;
    log(QStringLiteral("暂停所有导片任务"));
}

void tfimportthreadmanager::resumeAllImport()
{
    paused_ = false;
    log(QStringLiteral("恢复所有导片任务"));
    scheduleDealing(afterStartMs);
}

bool tfimportthreadmanager::isQueuedOrActive(const OrderIdentity &orderId) const
{
    const auto isOrder = [&orderId](const OrderInfo &order) { return order.identity() == orderId; };
    return std::any_of(runs_.cbegin(), runs_.cend(),
                       [&orderId](const OrderRun &run) { return run.orderId == orderId; }) ||
           std::any_of(starts_.cbegin(), starts_.cend(), [&isOrder](const Start &start) {
               return std::any_of(start.orders.cbegin(), start.orders.cend(), isOrder);
           });
}

// --- dealing

/// Asks for a dealing pass; one that is due earlier anyway serves as well.
void tfimportthreadmanager::scheduleDealing(int ms)
{
    if (!dealTimer_.isActive() || dealTimer_.remainingTime() > ms)
        dealTimer_.start(ms);
}

void tfimportthreadmanager::assignNextTask()
{
    logStep(1);
    if (paused_ || !running_)
        return;
    logStep(2);
    logStep(3);
    tfimportworker *worker = findIdleWorker();
    logStep(4);
    if (!worker) {
        log(QStringLiteral("assignNextTask - 4-没有空闲线程，500ms后重试"));
        scheduleDealing(whenBusyMs);
        return;
    }
    logStep(5);
    if (queue_.isEmpty() || preparing_)
        return;
    if (!isPrepared(queue_.first())) {
        prepare(queue_.first());
        return;
    }
    logStep(6);
    const ImportTask task = queue_.takeFirst();
    logStep(7);
    active_.insert(task.taskId, task);
    logStep(8);
    progress_.insert(task.taskId, {});
    logStep(9);
    scheduleDealing(afterPassMs);
    if (task.total == 0)
        reportProgress(task, 0);
    else
        deal(task, worker);
}

/// The first idle worker, with a line about each that is looked at.
tfimportworker *tfimportthreadmanager::findIdleWorker() const
{
    for (int id = 0; id < workers_.size(); ++id) {
        tfimportworker *worker = workers_.at(id);
        if (!worker->takesJobs()) {
            log(QStringLiteral("检测到停止的工作线程 %1，跳过").arg(id));
            continue;
        }
        const bool idle = worker->isIdle();
        log(QStringLiteral("工作线程 %1 空闲状态: %2")
                .arg(QString::number(id), idle ? QStringLiteral("空闲") : QStringLiteral("忙碌")));
        if (idle) {
            log(QStringLiteral("找到空闲线程: %1").arg(id));
            return worker;
        }
    }
    return nullptr;
}

tfimportworker *tfimportthreadmanager::anyIdleWorker() const
{
    const auto found = std::find_if(workers_.cbegin(), workers_.cend(), [](tfimportworker *worker) {
        return worker->takesJobs() && worker->isIdle();
    });
    return found == workers_.cend() ? nullptr : *found;
}

/// Whether a dealing pass finds folders for the photos of \a task, and rows of theirs in the
/// ledger.
bool tfimportthreadmanager::isPrepared(const ImportTask &task) const
{
    const OrderRun run = runs_.value(task.firstTaskId);
    const int dealtAtOnce = std::min(task.startIndex + mostWorkers, task.total);
    return run.foldersReady && (!run.recording || run.copies.size() >= dealtAtOnce);
}

/// Makes the folders of the order that is next, has its next photos recorded, and deals then.
void tfimportthreadmanager::prepare(const ImportTask &task)
{
    preparing_ = true;
    const OrderRun run = runs_.value(task.firstTaskId);
    onDisk(
        this, task.order->importPath,
        [order = task.order, needsFolders = !run.foldersReady, recording = run.recording,
         from = run.copies.size()] {
            if (needsFolders)
                photorules::prepareFolders(photorules::foldersOf(order->importPath, order->photos));
            return recording ? recording(*order, from, recordedAtOnce) : QVector<ledger::CopyId>();
        },
        [this, round = round_, first = task.firstTaskId](const QVector<ledger::CopyId> &recorded) {
            if (!round.isCurrent()) {
                PhotoRecording::withdraw(recorded);
                return;
            }
            preparing_ = false;
            runs_[first].foldersReady = true;
            runs_[first].copies += recorded;
            scheduleDealing(0);
        });
}

/// Nothing comes of what was recorded and not dealt out.
void tfimportthreadmanager::withdrawCopies()
{
    for (const OrderRun &run : qAsConst(runs_))
        PhotoRecording::withdraw(run.copies);
}

/// Hands the photos of \a task out, beginning with \a worker, as far as idle workers go; the rest
/// becomes a task of its own at the end of the queue.
void tfimportthreadmanager::deal(const ImportTask &task, tfimportworker *worker)
{
    const OrderInfo &order = *task.order;
    QVector<ledger::CopyId> &copies = runs_[task.firstTaskId].copies;
    for (int index = task.startIndex; index < task.total; ++index) {
        if (!worker->isIdle())
            worker = anyIdleWorker();
        if (!worker) {
            ImportTask rest = task;
            rest.startIndex = index;
            rest.taskId = nextTaskId_++;
            queue_.append(rest);
            return;
        }
        PhotoJob job;
        job.photo = order.photos.at(index);
        job.taskId = task.taskId;
        job.photoIndex = index;
        if (index < copies.size())
            job.copy = std::exchange(copies[index], 0);
        job.targetFolder = photorules::targetFolderOf(order.importPath, job.photo.kind);
        worker->give(job);
    }
}

// --- reports

void tfimportthreadmanager::onPhotoImported(int taskId, const QString &fileName, int photoIndex,
                                            bool success, const QString &errorMsg)
{
    const auto found = active_.constFind(taskId);
    if (found == active_.constEnd())
        return;
    ImportTask task = *found; // whoever hears of the photo may drop all tasks
    const auto run = runs_.find(task.firstTaskId);
    if (run == runs_.end())
        return;
    bool &done = progress_[taskId][photoIndex];
    run->done += done ? 0 : 1;
    done = true;
    const int completed = run->done;

    scheduleDealing(afterPassMs);
    const Latest::Token round = round_;
    emit photoImported(*task.order, fileName, photoIndex, success, errorMsg);
    if (round.isCurrent())
        reportProgress(task, completed);
}

void tfimportthreadmanager::onFailureExplained(int taskId, int photoIndex,
                                               const JobFailure &failure)
{
    const auto task = active_.constFind(taskId);
    if (task == active_.constEnd())
        return;
    const std::shared_ptr<const OrderInfo> order = task->order;
    emit failureExplained(*order, photoIndex, failure);
}

/// Tells how far the order of \a task is, and that it is complete when that is so.
void tfimportthreadmanager::reportProgress(const ImportTask &task, int completed)
{
    const bool complete = completed >= task.total;
    if (complete) {
        for (ImportTask &piece : active_)
            piece.completed = piece.completed || piece.firstTaskId == task.firstTaskId;
        runs_.remove(task.firstTaskId);
    }
    const Latest::Token round = round_;
    emit orderProgressUpdated(*task.order, completed, task.total);
    if (!complete || !round.isCurrent())
        return;
    log(QStringLiteral("订单 %1 导片完成").arg(task.order->orderPayForKey));
    emit orderImportCompleted(*task.order, true, QString());
}

void tfimportthreadmanager::onWorkerFinished(int workerId)
{
    log(QStringLiteral("工作线程 %1 完成任务").arg(workerId));
    scheduleDealing(afterStartMs);
}

void tfimportthreadmanager::checkTaskCompletion()
{
    for (auto task = active_.begin(); task != active_.end();) {
        if (!task->completed) {
            ++task;
            continue;
        }
        progress_.remove(task.key());
        task = active_.erase(task);
        ++finishedTasks_;
    }
    if (running_ && !queue_.isEmpty() && !anyIdleWorker()) {
        log(QStringLiteral("检测到可能的线程状态异常，尝试重新分配任务"));
        scheduleDealing(afterStallMs);
    }
    if (running_ && queue_.isEmpty() && active_.isEmpty() && starts_.isEmpty()) {
        running_ = false;
        decoded_.clear();
        log(QStringLiteral("所有导片任务完成"));
        emit allTasksCompleted();
    }
}
