#include "fileimport/run/importrun.h"

#include "fileimport/rules/importmismatch.h"
#include "fileimport/rules/importrequests.h"
#include "fileimport/rules/importrules.h"
#include "fileimport/run/importfilecopyrunnable.h"
#include "files/paths.h"
#include "net/servicecall.h"

#include <QDebug>
#include <QSet>

#include <algorithm>
#include <utility>

namespace {

constexpr int filesAtOnce = 4;
/// Tasks made ahead of time: the pool's threads never idle while the interface is busy or the
/// ledger notes the next ones, and an order of thousands of files does not become thousands of
/// objects.
constexpr int tasksAhead = 256 * filesAtOnce;
constexpr int stopPatienceMs = 5000;

QString notReceivedText()
{
    return QStringLiteral("服务端未收到");
}

} // namespace

ImportRun::ImportRun(ImportMode mode, QObject *parent)
    : QObject(parent)
    , mode_(mode)
    , pool_(QStringLiteral("import-copy"), filesAtOnce)
    , recording_(mode)
{
    stopTimer_.setSingleShot(true);
    stopTimer_.setInterval(stopPatienceMs);
    connect(&stopTimer_, &QTimer::timeout, this,
            [] { qDebug() << "部分任务未能在超时时间内完成"; });
}

ImportRun::~ImportRun()
{
    for (const Task &task : qAsConst(tasks_))
        task.runnable->cancel();
    pool_.clear();
    pool_.waitForDone();
}

QString ImportRun::refusalOf(const QVector<ImportOrder> &orders) const
{
    for (const ImportOrder &order : orders) {
        const QString tool = ordersatwork::toolAt(order.identity());
        if (!tool.isEmpty() && tool != importrules::toolName(mode_))
            return ordersatwork::refusal(order.displayName(), tool);
    }
    return {};
}

void ImportRun::settleClaim(const OrderIdentity &orderId)
{
    if (!isAtWork(orderId)) {
        claims_.remove(orderId);
    } else if (!claims_.contains(orderId)) {
        claims_.insert(orderId, std::make_shared<ordersatwork::Claim>(
                                    QVector<OrderIdentity>{orderId}, importrules::toolName(mode_)));
    }
}

bool ImportRun::start(const QVector<ImportOrder> &orders, const orderqueries::Identity &identity)
{
    if (isRunning())
        return false;
    for (const ImportOrder &order : orders) {
        if (!order.hasUnfinishedFile() || refuses(order, identity))
            continue;
        sequence_.append(order.identity());
        orders_.insert(order.identity(), order);
    }
    if (sequence_.isEmpty())
        return false;
    identity_ = identity;
    for (const OrderIdentity &orderId : qAsConst(sequence_))
        settleClaim(orderId);
    current_ = {};
    startNextOrder();
    return true;
}

bool ImportRun::refuses(const ImportOrder &order, const orderqueries::Identity &identity)
{
    const bool refused = !orderqueries::mayWorkOn(order.identity(), identity);
    if (refused)
        emit orderRefused(orderqueries::otherBranchText(order.displayName()));
    return refused;
}

void ImportRun::startNextOrder()
{
    const int from = current_.isEmpty() ? 0 : sequence_.indexOf(current_) + 1;
    for (int index = from; index < sequence_.size(); ++index) {
        if (orders_.value(sequence_.at(index)).hasUnfinishedFile()) {
            startOrder(sequence_.at(index));
            return;
        }
        qDebug() << "检测下一个订单文件的数量";
    }
    QVector<ImportFile> files;
    for (const OrderIdentity &orderId : qAsConst(sequence_))
        files += orders_.value(orderId).files;
    switchOff();
    emit allImported(importrules::unannouncedText(files));
}

void ImportRun::startOrder(const OrderIdentity &orderId)
{
    current_ = orderId;
    pending_.clear();
    ImportOrder &order = orders_[orderId];
    for (int index = order.files.size() - 1; index >= 0; --index) {
        ImportFile &file = order.files[index];
        if (file.state == ImportFile::Imported)
            continue;
        if (file.state != ImportFile::Waiting) {
            file.state = ImportFile::Waiting;
            file.message.clear();
            emit fileChanged(orderId, file);
        }
        if (!isLive(orderId, index))
            pending_.append(index);
    }
    emit orderStarted(orderId);
    tellActivity(orderId);
    feedPool();
}

void ImportRun::feedPool()
{
    // Many at a time, since each time the ledger is waited for.
    if (tasks_.size() > tasksAhead / 2)
        return;
    QVector<int> indexes;
    while (!pending_.isEmpty() && tasks_.size() + indexes.size() < tasksAhead)
        indexes.append(pending_.takeLast());
    startTasks(current_, indexes);
}

void ImportRun::startTasks(const OrderIdentity &orderId, const QVector<int> &fileIndexes)
{
    if (fileIndexes.isEmpty())
        return;
    const ImportOrder &order = orderOf(orderId);
    QVector<ImportFile> files;
    QVector<std::shared_ptr<ImportFileCopyRunnable>> started;
    for (const int fileIndex : fileIndexes) {
        ImportFile file = order.files.at(fileIndex);
        file.fileIndex = fileIndex;
        files.append(file);
        started.append(makeTask(orderId, file));
    }
    recording_.begin(order, files, identity_,
                     [this, started](const QVector<ledger::CopyId> &ids) { begin(started, ids); });
}

std::shared_ptr<ImportFileCopyRunnable> ImportRun::makeTask(const OrderIdentity &orderId,
                                                            const ImportFile &file)
{
    const auto task = std::make_shared<ImportFileCopyRunnable>(file);
    auto *runnable = task.get();
    connect(
        runnable, &ImportFileCopyRunnable::copyFinished, this,
        [this, runnable](const ImportFile &copied) { onFileCopyFinished(runnable, copied); },
        Qt::QueuedConnection);
    connect(
        runnable, &ImportFileCopyRunnable::copyCancelled, this,
        [this, runnable](const ImportFile &left) { onFileCopyCancelled(runnable, left); },
        Qt::QueuedConnection);
    tasks_.append({task, orderId, file.fileIndex, false, false});
    return task;
}

void ImportRun::begin(const QVector<std::shared_ptr<ImportFileCopyRunnable>> &started,
                      const QVector<ledger::CopyId> &ids)
{
    QVector<ledger::CopyId> withdrawn;
    for (int position = 0; position < started.size(); ++position) {
        const auto task =
            std::find_if(tasks_.begin(), tasks_.end(), [&started, position](const Task &each) {
                return each.runnable == started.at(position);
            });
        if (task == tasks_.end()) {
            withdrawn.append(ids.value(position)); // by a stop, meanwhile
            continue;
        }
        task->runnable->record(ids.value(position));
        task->inPool = true;
        pool_.start(task->runnable);
    }
    ImportRecording::withdraw(withdrawn, ImportFileCopyRunnable::cancelledText());
}

ImportRun::Task ImportRun::takeTask(ImportFileCopyRunnable *runnable)
{
    const auto found = std::find_if(tasks_.begin(), tasks_.end(), [runnable](const Task &task) {
        return task.runnable.get() == runnable;
    });
    Q_ASSERT(found != tasks_.end()); // a task is in the list until its one signal has come
    const Task task = *found;
    tasks_.erase(found);
    return task;
}

void ImportRun::onFileCopyFinished(ImportFileCopyRunnable *runnable, const ImportFile &file)
{
    const Task task = takeTask(runnable);
    qDebug().noquote() << QStringLiteral("文件拷贝完成: %1, 状态: %2, 信息: %3")
                              .arg(file.sourcePath,
                                   file.state == ImportFile::Imported ? QStringLiteral("成功")
                                                                      : QStringLiteral("失败"),
                                   file.message);
    if (!task.abandoned) {
        storeResult(task.orderId, file);
        afterResult(task.orderId, file);
    } else {
        // Where the file was started anew, the new attempt speaks for it, or has spoken.
        const bool waits =
            orderOf(task.orderId).files.at(task.fileIndex).state == ImportFile::Waiting;
        if (waits && !isCurrent(task.orderId) && !isLive(task.orderId, task.fileIndex)) {
            storeResult(task.orderId, file);
            if (orderOf(task.orderId).unregistered)
                leaveUnregistered(task.orderId);
        }
        tellActivity(task.orderId);
    }
    afterLastTask();
}

void ImportRun::onFileCopyCancelled(ImportFileCopyRunnable *runnable, const ImportFile &file)
{
    onFileCopyFinished(runnable, file);
}

void ImportRun::afterLastTask()
{
    if (!tasks_.isEmpty())
        return;
    endRecording();
    if (stopTimer_.isActive()) {
        stopTimer_.stop();
        qDebug() << "所有导入任务已停止";
    }
    emit tasksEnded();
}

void ImportRun::storeResult(const OrderIdentity &orderId, const ImportFile &file)
{
    ImportOrder &order = orders_[orderId];
    order.applyResult(file);
    if (file.state == ImportFile::Imported)
        order.unregistered = true; // until the order is registered
    emit fileChanged(orderId, file);
}

void ImportRun::afterResult(const OrderIdentity &orderId, const ImportFile &file)
{
    if (file.state == ImportFile::Imported && file.fileIndex == 0)
        upImportOrderPath(orderOf(orderId));
    if (isCurrent(orderId))
        feedPool();
    tellActivity(orderId);
    if (isCopying(orderId))
        return;
    const ImportOrder &order = orderOf(orderId);
    if (order.countOf(ImportFile::Waiting) == 0)
        importNextOrder(orderId);
    else if (order.unregistered)
        leaveUnregistered(orderId); // a retry in an order whose run was stopped
}

void ImportRun::upImportOrderPath(const ImportOrder &order)
{
    // Nothing hangs on the answer: the batch registration at the end names the folder again.
    callService(this, importrequests::orderPathAction,
                importrequests::orderPathBody(order, identity_), [](const ServiceReply &reply) {
                    if (!reply.isSuccess())
                        qDebug() << "导片路径提交失败:" << reply.message;
                });
}

void ImportRun::importNextOrder(const OrderIdentity &orderId)
{
    const ImportOrder order = orders_.value(orderId);
    qDebug() << "获取导的文件数量是：" << order.files.size() << " -- " << order.rowIndex;
    dropRegistration(orderId);
    auto *registration = new OrderRegistration(mode_, order, identity_, this);
    registrations_.insert(orderId, registration);
    settleClaim(orderId);
    recording_.announce(orderId);
    connect(registration, &OrderRegistration::registered, this,
            [this, orderId](const RegistrationResult &result) { onRegistered(orderId, result); });
    connect(registration, &OrderRegistration::failed, this,
            [this, orderId](const QString &question, const QString &certificateError) {
                emit resubmitNeeded(orderId, question, certificateError);
            });
    registration->start();
}

void ImportRun::onRegistered(const OrderIdentity &orderId, const RegistrationResult &result)
{
    const ImportOrder order = orders_.value(orderId);
    dropRegistration(orderId);
    orders_[orderId].unregistered = false;
    recordRegistration(order, result.reply);
    const bool inRun = isCurrent(orderId);
    const BoxText notice = importmismatch::notice(mode_, order, result.reply);
    emit orderRegistered(orderId, result);
    if (!notice.shown.isEmpty()) {
        failMismatched(orderId, result.reply);
        if (inRun)
            switchOff();
        emit mismatchFound(orderId, notice);
        return;
    }
    // A file of the order that is being retried meanwhile registers the order again when it is
    // done.
    if (inRun)
        startNextOrder();
}

void ImportRun::failMismatched(const OrderIdentity &orderId,
                               const importrequests::BatchReply &reply)
{
    ImportOrder &order = orders_[orderId];
    const QVector<int> positions = importmismatch::files(mode_, order, reply);
    for (const int position : positions) {
        order.files[position].state = ImportFile::Failed;
        order.files[position].message = notReceivedText();
    }
    if (!positions.isEmpty())
        emit filesChanged(orderId, order.files);
}

void ImportRun::recordRegistration(const ImportOrder &order,
                                   const importrequests::BatchReply &reply)
{
    QStringList missing;
    const QVector<int> positions = importmismatch::files(mode_, order, reply);
    for (const int position : positions) {
        const ImportFile &file = order.files.at(position);
        missing.append(joinWirePath(file.targetFolder, file.targetName()));
    }
    recording_.registered(order.identity(), missing, notReceivedText());
}

void ImportRun::dropRegistration(const OrderIdentity &orderId)
{
    if (OrderRegistration *registration = registrations_.take(orderId)) {
        registration->disconnect(this); // its answer may be on its way
        registration->deleteLater();
    }
    settleClaim(orderId);
}

void ImportRun::leaveUnregistered(const OrderIdentity &orderId)
{
    dropRegistration(orderId);
    orders_[orderId].unregistered = true;
    emit orderLeftUnregistered(orderId);
}

void ImportRun::answerResubmit(const OrderIdentity &orderId, bool again)
{
    OrderRegistration *registration = registrations_.value(orderId);
    if (!registration || !registration->hasFailed())
        return; // stopped, or begun anew, while the question stood
    if (again) {
        recording_.announce(orderId);
        registration->start();
    } else {
        stopAllImports();
    }
}

void ImportRun::stopAllImports()
{
    qDebug().noquote() << QStringLiteral("停止所有导入任务，当前任务数: %1").arg(tasks_.size());
    QSet<OrderIdentity> stopped;
    if (isRunning())
        stopped.insert(current_);
    pending_.clear();
    QVector<Task> running;
    for (const Task &task : qAsConst(tasks_)) {
        stopped.insert(task.orderId);
        if (!task.inPool)
            continue;
        if (pool_.takeBack(task.runnable.get())) {
            // Never started: its file keeps waiting.
            ImportRecording::withdraw({task.runnable->recorded()},
                                      ImportFileCopyRunnable::cancelledText());
            continue;
        }
        task.runnable->cancel();
        running.append(task);
        running.last().abandoned = true;
    }
    const bool hadTasks = !tasks_.isEmpty();
    tasks_ = running;
    const QList<OrderIdentity> registering = registrations_.keys();
    stopped += QSet<OrderIdentity>(registering.cbegin(), registering.cend());
    switchOff();
    for (const OrderIdentity &orderId : qAsConst(stopped)) {
        if (isRegistering(orderId) || orderOf(orderId).unregistered)
            leaveUnregistered(orderId);
        tellActivity(orderId);
    }
    if (!tasks_.isEmpty()) {
        stopTimer_.start();
    } else {
        qDebug() << "所有导入任务已停止";
        if (hadTasks)
            emit tasksEnded();
    }
}

void ImportRun::switchOff()
{
    if (!isRunning())
        return;
    const QVector<OrderIdentity> ended = std::exchange(sequence_, {});
    current_ = {};
    pending_.clear();
    for (const OrderIdentity &orderId : ended)
        settleClaim(orderId);
    endRecording();
    emit switchedOff();
}

void ImportRun::endRecording()
{
    if (!isRunning() && tasks_.isEmpty())
        recording_.end();
}

void ImportRun::retry(const ImportOrder &order, int fileIndex,
                      const orderqueries::Identity &identity)
{
    if (fileIndex < 0 || fileIndex >= order.files.size() || isLive(order.identity(), fileIndex) ||
        refuses(order, identity))
        return;
    qDebug() << "重新导入文件:" << order.files.at(fileIndex).sourcePath;
    if (!isRunning())
        identity_ = identity;
    ImportOrder &own = orders_[order.identity()];
    const bool unregistered = own.unregistered; // others of its files may be done already
    own = order;
    own.unregistered |= unregistered;
    ImportFile &file = own.files[fileIndex];
    file.state = ImportFile::Waiting;
    file.message.clear();
    emit fileChanged(order.identity(), file);
    startTasks(order.identity(), {fileIndex});
    tellActivity(order.identity());
}

void ImportRun::registerAgain(const ImportOrder &order, const orderqueries::Identity &identity)
{
    if (registrations_.contains(order.identity()) || isCopying(order.identity()) ||
        refuses(order, identity))
        return;
    if (!isRunning())
        identity_ = identity;
    orders_.insert(order.identity(), order);
    importNextOrder(order.identity());
}

void ImportRun::keepMarks(QVector<ImportOrder> *orders) const
{
    for (ImportOrder &order : *orders) {
        const auto known = orders_.constFind(order.identity());
        if (known == orders_.cend() || !known->unregistered)
            continue;
        order.unregistered = true;
        order.importPath = known->importPath;
    }
}

int ImportRun::unregisteredOrders() const
{
    return int(std::count_if(orders_.cbegin(), orders_.cend(),
                             [](const ImportOrder &order) { return order.unregistered; }));
}

void ImportRun::tellActivity(const OrderIdentity &orderId)
{
    settleClaim(orderId);
    emit orderActivityChanged(orderId,
                              hasTasks(orderId) || (isCurrent(orderId) && !pending_.isEmpty()));
}

bool ImportRun::isAtWork(const OrderIdentity &orderId) const
{
    return hasTasks(orderId) || sequence_.contains(orderId) || isRegistering(orderId);
}

bool ImportRun::isLive(const OrderIdentity &orderId, int fileIndex) const
{
    return std::any_of(tasks_.cbegin(), tasks_.cend(), [&](const Task &task) {
        return !task.abandoned && task.fileIndex == fileIndex && task.orderId == orderId;
    });
}

bool ImportRun::isCopying(const OrderIdentity &orderId) const
{
    return std::any_of(tasks_.cbegin(), tasks_.cend(), [&orderId](const Task &task) {
        return !task.abandoned && task.orderId == orderId;
    });
}

bool ImportRun::hasTasks(const OrderIdentity &orderId) const
{
    return std::any_of(tasks_.cbegin(), tasks_.cend(),
                       [&orderId](const Task &task) { return task.orderId == orderId; });
}

TransferProgress ImportRun::progress() const
{
    TransferProgress progress;
    QVector<OrderIdentity> counted = sequence_;
    if (counted.isEmpty()) {
        for (const Task &task : tasks_) {
            if (!counted.contains(task.orderId))
                counted.append(task.orderId);
        }
    }
    for (const OrderIdentity &orderId : qAsConst(counted)) {
        const auto order = orders_.constFind(orderId);
        if (order == orders_.cend())
            continue;
        for (const ImportFile &file : order->files) {
            ++progress.filesTotal;
            progress.bytesTotal += file.size;
            if (file.state == ImportFile::Waiting)
                continue;
            ++progress.filesDone;
            if (file.state == ImportFile::Imported)
                progress.bytesDone += file.size;
        }
    }
    const Task *shown = nullptr;
    for (const Task &task : tasks_) {
        const qint64 copied = task.runnable->bytesCopied();
        progress.bytesDone += copied;
        // The first that is being copied, rather than one that waits for its turn.
        if (!task.abandoned && (!shown || (copied > 0 && shown->runnable->bytesCopied() == 0)))
            shown = &task;
    }
    if (shown) {
        progress.order = orderOf(shown->orderId).displayName();
        progress.file = orderOf(shown->orderId).files.at(shown->fileIndex).fileName();
    } else if (orders_.contains(current_)) {
        progress.order = orderOf(current_).displayName();
    }
    return progress;
}
