#include "photoimport/run/photoimportrun.h"

#include "photoimport/rules/photorequests.h"
#include "tasks/background.h"

#include <QDebug>

PhotoImportRun::PhotoImportRun(tforderlistmodel *orders, QObject *parent)
    : QObject(parent), orders_(orders)
{
    connect(&pool_, &tfimportthreadmanager::photoImported, this, &PhotoImportRun::onPhotoImported);
    connect(&pool_, &tfimportthreadmanager::failureExplained, this,
            &PhotoImportRun::onFailureExplained);
    connect(&pool_, &tfimportthreadmanager::orderProgressUpdated, this,
            &PhotoImportRun::onOrderProgressUpdated);
    connect(&pool_, &tfimportthreadmanager::orderImportCompleted, this,
            [this](const OrderInfo &order) {
                orders_->setRun(orders_->rowOf(order.identity()), PhotoOrder::Run::Idle);
            });
    // The pool and the registrar must not be called again from within their own signals.
    connect(&pool_, &tfimportthreadmanager::allTasksCompleted, this, &PhotoImportRun::afterStep,
            Qt::QueuedConnection);
    connect(&registrar_, &PhotoRegistrar::idle, this, &PhotoImportRun::afterStep,
            Qt::QueuedConnection);
    connect(&pool_, &tfimportthreadmanager::pathErrorOccurred, this,
            &PhotoImportRun::onStartRefused, Qt::QueuedConnection);
    connect(&pool_, &tfimportthreadmanager::workersEnded, this, [this] {
        if (!isBusy())
            releaseWork();
        emit workersEnded();
    });
    connect(&registrar_, &PhotoRegistrar::photoRegistered, this,
            [this](const OrderIdentity &orderId, const PhotoInfo &photo) {
                recording_.registered(photorules::outputPathOf(photo.importFolder, photo));
                onRegistered(orderId, photo, RegistrationState::Registered, {});
            });
    connect(&registrar_, &PhotoRegistrar::photoRefused, this,
            [this](const OrderIdentity &orderId, const PhotoInfo &photo, const QString &reason) {
                onRegistered(orderId, photo, RegistrationState::Refused, reason);
            });
    connect(&registrar_, &PhotoRegistrar::orderRegistered, this,
            [this](const OrderIdentity &orderId) {
                orders_->setFolderRefusal(orders_->rowOf(orderId), {});
            });
    connect(&registrar_, &PhotoRegistrar::orderRefused, this,
            [this](const OrderIdentity &orderId, const QString &reason) {
                orders_->setFolderRefusal(orders_->rowOf(orderId), reason);
            });
}

bool PhotoImportRun::isQueuedOrActive(int row) const
{
    const PhotoOrder &order = orders_->order(row);
    return order.run != PhotoOrder::Run::Idle || pool_.isQueuedOrActive(order.identity());
}

bool PhotoImportRun::start(const QVector<int> &rows, const QVector<int> &indexes,
                           const orderqueries::Identity &identity)
{
    if (!preparing_.isEmpty())
        return false;
    QVector<const PhotoOrder *> wanted;
    for (const int row : rows)
        wanted.append(&orders_->order(row));
    if (!takeInHand(wanted, identity))
        return true;
    if (!open_)
        batch_.clear();
    identity_ = identity;
    open_ = true;
    recording_.start(identity, orders_->photoMode());
    pool_.setRecording([run = recording_.run(), mode = recording_.mode()](const OrderInfo &order,
                                                                          int from, int count) {
        return PhotoRecording::begin(run, mode, order, from, count);
    });
    QVector<PhotoOrder> started;
    for (const int row : rows) {
        const OrderIdentity id = orders_->order(row).identity();
        orders_->resetFailedJobs(row, indexes);
        started.append(orders_->order(row));
        orders_->setRun(row, PhotoOrder::Run::Queued);
        preparing_.insert(id);
        batch_.insert(id);
        announced_.remove(id);
    }
    // Orders of thousands of photos make tens of thousands of jobs.
    onProcessor(
        this,
        [started, indexes, mode = orders_->photoMode()] {
            QList<OrderInfo> orders;
            for (const PhotoOrder &order : started)
                orders.append(photoorders::withJobs(order, mode, indexes));
            return orders;
        },
        start_.only([this](const QList<OrderInfo> &orders) { begin(orders); }));
    emit stateChanged();
    return true;
}

bool PhotoImportRun::takeInHand(const QVector<const PhotoOrder *> &orders,
                                const orderqueries::Identity &identity)
{
    QVector<OrderIdentity> wanted;
    for (const PhotoOrder *order : orders) {
        wanted.append(order->identity());
        if (orderqueries::mayWorkOn(order->identity(), identity))
            continue;
        emit refused(orderqueries::otherBranchText(order->displayName()), {});
        return false;
    }
    const auto conflict = ordersatwork::claim(wanted, photorules::toolName(), &claim_);
    if (!conflict)
        return true;
    const PhotoOrder *order = orders.at(wanted.indexOf(conflict->order));
    emit refused(ordersatwork::refusal(order->info.orderPayForKey, conflict->tool), {});
    return false;
}

void PhotoImportRun::begin(const QList<OrderInfo> &orders)
{
    preparing_.clear();
    if (orders.size() == 1)
        pool_.startImportOrder(orders.constFirst());
    else
        pool_.startImportAllOrders(orders);
    emit stateChanged();
}

void PhotoImportRun::stop()
{
    start_.abandon();
    preparing_.clear();
    open_ = false;
    pool_.stopAllImport();
    releaseOrders();
    afterStep();
}

/// Orders that are not held any more, though not completed either, leave the run.
void PhotoImportRun::releaseOrders()
{
    for (int row = 0; row < orders_->orders().size(); ++row) {
        const PhotoOrder &order = orders_->order(row);
        const OrderIdentity id = order.identity();
        if (order.run == PhotoOrder::Run::Idle || preparing_.contains(id) ||
            pool_.isQueuedOrActive(id))
            continue;
        batch_.remove(id);
        orders_->setRun(row, PhotoOrder::Run::Idle);
    }
}

void PhotoImportRun::onStartRefused(const QString &message, const QString &path)
{
    releaseOrders();
    if (batch_.isEmpty())
        open_ = false; // there was nothing but what was refused
    afterStep();
    emit refused(message, path);
}

void PhotoImportRun::onPhotoImported(const OrderInfo &orderinfo, const QString &fileName,
                                     int photoindex, bool success, const QString &errorMsg)
{
    const PhotoInfo job = orderinfo.photos.value(photoindex);
    const int index = orders_->applyResult(orderinfo.identity(), job, success, errorMsg);
    const int row = orders_->rowOf(orderinfo.identity());
    if (row >= 0 && orders_->order(row).run == PhotoOrder::Run::Queued)
        orders_->setRun(row, PhotoOrder::Run::Active);
    if (success) {
        qDebug().noquote() << QStringLiteral("照片导入完成：成功: %1 - %2-%3 第 %4")
                                  .arg(orderinfo.orderPayForKey, fileName, job.kind,
                                       QString::number(photoindex + 1));
        if (photorequests::isRegistered(orders_->photoMode(), job))
            orders_->applyRegistration(orderinfo.identity(), job, RegistrationState::Pending);
        registrar_.upImportPhotoInfo(orderinfo, photoindex, orders_->photoMode(), identity_);
        if (!announced_.contains(orderinfo.identity())) {
            announced_.insert(orderinfo.identity());
            registrar_.upImportOrderData(orderinfo, identity_);
        }
    } else {
        qDebug().noquote() << QStringLiteral("照片导入完成：失败: %1 - %2 第 %3, 错误: %4")
                                  .arg(orderinfo.orderPayForKey, fileName,
                                       QString::number(photoindex + 1), errorMsg);
    }
    if (index >= 0)
        emit fileChanged(orderinfo.identity(), index);
}

void PhotoImportRun::onFailureExplained(const OrderInfo &orderinfo, int photoindex,
                                        const JobFailure &failure)
{
    orders_->applyFailure(orderinfo.identity(), orderinfo.photos.value(photoindex), failure);
}

void PhotoImportRun::onOrderProgressUpdated(const OrderInfo &orderinfo, int completed, int total)
{
    qDebug().noquote() << QStringLiteral("订单 %1 导片进度: %2/%3 (%4%)")
                              .arg(orderinfo.orderPayForKey, QString::number(completed),
                                   QString::number(total),
                                   QString::number(total > 0 ? completed * 100 / total : 100));
}

TransferProgress PhotoImportRun::progress()
{
    orders_->flush();
    return orders_->progressOf(batch_);
}

bool PhotoImportRun::registerAgain(int row, const QVector<int> &indexes,
                                   const orderqueries::Identity &identity)
{
    if (indexes.isEmpty() && orders_->order(row).folderRefusal.isEmpty())
        return true;
    if (!takeInHand({&orders_->order(row)}, identity))
        return false;
    const PhotoMode mode = orders_->photoMode();
    const OrderInfo order = photoorders::withMainJobs(orders_->order(row), mode, indexes);
    if (!orders_->order(row).folderRefusal.isEmpty())
        registrar_.upImportOrderData(order, identity);
    for (int position = 0; position < order.photos.size(); ++position) {
        onRegistered(order.identity(), order.photos.at(position), RegistrationState::Pending, {});
        registrar_.upImportPhotoInfo(order, position, mode, identity);
    }
    emit stateChanged();
    return true;
}

bool PhotoImportRun::registerAgain(const PhotoOrder &order, const UnregisteredPhotos &photos,
                                   const orderqueries::Identity &identity)
{
    if (!takeInHand({&order}, identity))
        return false;
    left_.start(photos, identity);
    emit stateChanged();
    return true;
}

void PhotoImportRun::onRegistered(const OrderIdentity &orderId, const PhotoInfo &photo,
                                  RegistrationState state, const QString &reason)
{
    stale_ = true;
    const int index = orders_->applyRegistration(orderId, photo, state, reason);
    if (index >= 0)
        emit fileChanged(orderId, index);
}

/// Nothing goes on any more.
void PhotoImportRun::releaseWork()
{
    claim_.release();
    const bool wasRecording = recording_.run() != 0;
    recording_.end();
    if (wasRecording)
        emit recorded();
}

void PhotoImportRun::cancelRegistrations()
{
    registrar_.cancel();
    left_.abandon();
    afterStep();
}

void PhotoImportRun::afterStep()
{
    orders_->flush();
    if (pool_.isPaused() && !isImporting())
        pool_.resumeAllImport(); // the next run is not to begin paused
    emit stateChanged();
    if (isBusy())
        return;
    if (!hasLiveWorkers())
        releaseWork();
    if (const auto outcome = left_.take())
        emit toldAgain(*outcome);
    if (open_) {
        open_ = false;
        RunOutcome outcome;
        for (const OrderIdentity &id : qAsConst(batch_)) {
            const int row = orders_->rowOf(id);
            if (row >= 0)
                outcome.add(orders_->order(row), orders_->photoMode());
        }
        emit ended(outcome);
    }
    if (stale_) {
        stale_ = false;
        emit countsStale();
    }
}
