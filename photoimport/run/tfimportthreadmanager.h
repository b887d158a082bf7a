#pragma once

#include "photoimport/rules/photoimportrecords.h"
#include "photoimport/rules/photorules.h"
#include "photoimport/run/decodedsources.h"
#include "photoimport/run/photorecording.h"
#include "photoimport/run/tfimportworker.h"
#include "tasks/latest.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

#include <functional>

/// The pool of the photo import: queues orders and deals their photos out to worker threads, one at
/// a time, until all are reported.
///
/// Lives on the interface thread, which alone touches its state, and never waits there: import
/// paths are checked and folders made on disk threads, so a start takes effect a little later.
/// Starts take effect in the order in which they were asked for. A failed photo counts as done.
/// Destroying it while hasLiveWorkers() waits for the photos in work: stop it and release it on
/// workersEnded() instead.
class tfimportthreadmanager : public QObject
{
    Q_OBJECT

public:
    static constexpr int defaultWorkers = 4;
    static constexpr int mostWorkers = 16;

    /// Notes for the ledger that jobs of an order, from a position on and so many at most, are
    /// going to be done; an id for each. Called on disk threads.
    using Recording =
        std::function<QVector<ledger::CopyId>(const OrderInfo &order, int from, int count)>;

    explicit tfimportthreadmanager(QObject *parent = nullptr);
    /// With other work for the workers, as tests have.
    explicit tfimportthreadmanager(PhotoOperations operations, QObject *parent = nullptr);
    ~tfimportthreadmanager() override;

    /// For orders that are started from now on.
    void setRecording(Recording recording) { recording_ = std::move(recording); }

    int maxWorkers() const { return workerCount_; }
    /// Clamped to 1..16. Drops all work when running, so it is best changed when idle.
    void setMaxWorkers(int count);

    bool isPaused() const { return paused_; }
    /// Whether work is queued, active or about to be queued.
    bool isBusy() const { return running_ || !starts_.isEmpty(); }
    /// Whether the order with this id is queued, active or about to be queued.
    bool isQueuedOrActive(const OrderIdentity &orderId) const;
    /// Whether a worker that was told to stop still finishes its photo.
    bool hasLiveWorkers() const;
    /// Tasks, pieces of orders included, that were completed so far.
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
    /// Comes before photoImported() of a failed photo when more is known than its text says.
    void failureExplained(const OrderInfo &orderinfo, int photoindex, const JobFailure &failure);
    void orderProgressUpdated(const OrderInfo &orderinfo, int completed, int total);
    /// All jobs of the order are reported; success is always true.
    void orderImportCompleted(const OrderInfo &orderinfo, bool success, const QString &errorMsg);
    void allTasksCompleted();
    /// A start was refused; nothing was queued.
    void pathErrorOccurred(const QString &errorMessage, const QString &invalidPath);
    /// The last worker that was told to stop has ended, after stopAllImport() or setMaxWorkers().
    void workersEnded();

private slots:
    void assignNextTask();
    void onPhotoImported(int taskId, const QString &fileName, int photoIndex, bool success,
                         const QString &errorMsg);
    void onFailureExplained(int taskId, int photoIndex, const JobFailure &failure);
    void onWorkerFinished(int workerId);
    void checkTaskCompletion();

private:
    /// A start whose paths are being checked.
    struct Start
    {
        QList<OrderInfo> orders;
        bool batch = false;
    };

    /// What the pieces of one queued order have in common.
    struct OrderRun
    {
        OrderIdentity orderId;
        int done = 0; ///< photos reported; the flags in progress_, kept as a number because adding
                      ///< up thousands of pieces at each report would not do
        bool foldersReady = false;
        Recording recording;
        QVector<ledger::CopyId> copies; ///< of the first photos, as far as they are recorded; 0
                                        ///< once a photo is dealt out
    };

    void enqueueStart(const Start &start);
    void checkNextStart();
    void onPathsChecked(const photorules::PathProblem &problem);
    void queueStart(const Start &start);

    void scheduleDealing(int ms);
    tfimportworker *findIdleWorker() const;
    tfimportworker *anyIdleWorker() const;
    bool isPrepared(const ImportTask &task) const;
    void prepare(const ImportTask &task);
    void withdrawCopies();
    void deal(const ImportTask &task, tfimportworker *worker);
    void reportProgress(const ImportTask &task, int completed);

    void createWorkers();
    void retireWorkers();
    void onThreadEnded();

    DecodedSources decoded_; ///< the workers' operations may refer to it
    PhotoOperations operations_;
    Recording recording_;
    int workerCount_ = defaultWorkers;
    QList<tfimportworker *> workers_;
    QList<tfimportworker *> retired_; ///< replaced, but still finishing a photo

    QList<Start> starts_; ///< the first one is being checked
    QList<ImportTask> queue_;
    QMap<int, ImportTask> active_;        ///< dealt out, by task id
    QMap<int, QMap<int, bool>> progress_; ///< by task id and photo index
    QMap<int, OrderRun> runs_;            ///< by the id of an order's first task
    bool running_ = false;
    bool paused_ = false;
    bool preparing_ = false; ///< folders and copies of the head task are being seen to
    bool stopping_ = false;  ///< workersEnded() is due
    Latest rounds_;          ///< each ends with a stop: what it began is not wanted any more
    Latest::Token round_ = rounds_.next();
    int nextTaskId_ = 1;
    int finishedTasks_ = 0;
    QTimer dealTimer_;
    QTimer completionTimer_;
};
