#pragma once

#include "photoimport/decodedsources.h"
#include "photoimport/photorecords.h"
#include "photoimport/photorules.h"
#include "photoimport/tfimportworker.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>

/// The pool of the photo import: queues orders and deals their photos out to worker threads, one at
/// a time, until all are reported.
///
/// Lives on the interface thread, which alone touches its state, and never waits there: import
/// paths are checked and folders made on disk threads, so that a start takes effect a little later.
/// Starts take effect in the order in which they were asked for. A failed photo counts as done.
/// Destroying it while hasLiveWorkers() waits for the photos in work: stop it and release it on
/// workersEnded() instead.
class tfimportthreadmanager : public QObject
{
    Q_OBJECT

public:
    static constexpr int defaultWorkers = 4;
    static constexpr int mostWorkers = 16;

    explicit tfimportthreadmanager(QObject *parent = nullptr);
    /// With work of its own for the workers, as tests have.
    explicit tfimportthreadmanager(const PhotoOperations &operations, QObject *parent = nullptr);
    ~tfimportthreadmanager() override;

    int maxWorkers() const { return workerCount_; }
    /// Clamped to 1..16. Drops all work when running, so it is best changed when idle.
    void setMaxWorkers(int count);

    bool isPaused() const { return paused_; }
    /// Whether work is queued, active or about to be queued.
    bool isBusy() const { return running_ || !starts_.isEmpty(); }
    /// Whether the order with this id is queued, active or about to be queued.
    bool isQueuedOrActive(const QString &orderId) const;
    /// Whether a worker that was told to stop still finishes its photo.
    bool hasLiveWorkers() const;
    /// Orders that were taken out of the active tasks as completed, piece by piece.
    int finishedTasks() const { return finishedTasks_; }

public slots:
    /// Queues one order; its photos are the jobs, see photorules::jobsFor().
    void startImportOrder(const OrderInfo &order);
    /// Queues every order of the list, each by itself.
    void startImportAllOrders(const QList<OrderInfo> &orders);
    /// Drops all work. Photos in work are finished, but no longer reported.
    void stopAllImport();
    /// Workers finish what they hold; nothing more is dealt out until resumed.
    void pauseAllImport();
    void resumeAllImport();

signals:
    /// One job is done. \a photoindex is its position in the order's photos.
    void photoImported(const OrderInfo &orderinfo, const QString &fileName, int photoindex,
                       bool success, const QString &errorMsg);
    void orderProgressUpdated(const OrderInfo &orderinfo, int completed, int total);
    /// All jobs of the order are reported; success is always true.
    void orderImportCompleted(const OrderInfo &orderinfo, bool success, const QString &errorMsg);
    void allTasksCompleted();
    /// A start was refused; nothing was queued.
    void pathErrorOccurred(const QString &errorMessage, const QString &invalidPath);
    /// After a stop: the last worker has finished its photo.
    void workersEnded();

private slots:
    void assignNextTask();
    void onPhotoImported(int taskId, const QString &fileName, int photoIndex, bool success,
                         const QString &errorMsg);
    void onWorkerFinished(int workerId);
    void checkTaskCompletion();

private:
    /// A start whose paths are being checked.
    struct Start
    {
        QList<OrderInfo> orders;
        bool batch = false;
    };

    DecodedSources decoded_;
    PhotoOperations operations_;
    int workerCount_ = defaultWorkers;
    QList<tfimportworker *> workers_;
    QList<Start> starts_;
    QList<ImportTask> queue_;
    QMap<int, ImportTask> active_;
    bool running_ = false;
    bool paused_ = false;
    int finishedTasks_ = 0;
};
