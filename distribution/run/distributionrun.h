#pragma once

#include "distribution/plan/distributionplan.h"
#include "distribution/proof/orderproof.h"
#include "distribution/rules/orderdata.h"
#include "distribution/run/distributionrecording.h"
#include "distribution/run/downloadreports.h"
#include "distribution/run/imagefetches.h"
#include "files/transferprogress.h"
#include "net/orderqueries.h"
#include "net/servicecall.h"
#include "tasks/latest.h"
#include "tasks/ordersatwork.h"
#include "tasks/stopflag.h"
#include "tasks/workerpool.h"

#include <QHash>
#include <QMetaType>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <memory>
#include <optional>

/// What a run is started with, besides the orders; it keeps its own copy.
struct RunSettings
{
    DesignFileSplitTypes type = DesignFileSplitTypes::Distribution;
    QString directory; ///< as this machine writes it
    DownloadOptions options;
    QString namingRule; ///< JSON text
    orderqueries::Identity identity;
    QHash<OrderIdentity, QSet<QString>> leftOut; ///< keys of photos
};

/// How a run ended.
struct RunSummary
{
    int orders = 0;    ///< that were to be distributed
    int completed = 0; ///< that were gone through, with failures or without
    bool stopped = false;
    QStringList refused;         ///< names of orders of which nothing was done
    QStringList errors;          ///< one failure a line
    QVector<ProvedOrder> proofs; ///< of the completed ones
};
Q_DECLARE_METATYPE(RunSummary)

/// The order of steps of a distribution or download: one order after the other, each fetched from
/// the service, planned on a worker, its files written by tasks on the pool, all at once, and at
/// last its products and its sheet. The next order starts when every result of this one has been
/// counted; failures count as well, and are collected.
///
/// Lives on the interface thread and never blocks. Destroying it while isBusy() waits for the tasks
/// in flight: release it on idle() instead.
class DistributionRun : public QObject
{
    Q_OBJECT

public:
    explicit DistributionRun(QObject *parent = nullptr);
    ~DistributionRun() override;

    /// What the tasks do; before start().
    void setPerform(PerformTask perform) { perform_ = std::move(perform); }

    /// False, and nothing happens, while a run is going on or without orders.
    bool start(const QVector<OrderData> &orders, const RunSettings &settings);
    /// Starts nothing any more; the run is over when the tasks in flight have ended.
    void stop();
    bool isRunning() const { return running_; }
    /// Of the order it is at, whose bytes nobody knows before; and over all orders, 0 to 1.
    TransferProgress progress() const;
    double share() const;
    /// Whether tasks are in flight or the service has not taken every report yet.
    bool isBusy() const { return tasksInFlight_ > 0 || reports_.isBusy(); }
    /// Does not wait for the service's answers any more.
    void abandonReports() { reports_.abandon(); }

signals:
    /// \a position counts from 1.
    void orderStarted(int position, int total, const OrderData &order);
    void detailRead(const OrderIdentity &order, const OrderDetailPtr &detail);
    void progressChanged(int value, int expected);
    /// What goes on within the order, for the user; empty after the run. Told now and then.
    void stepChanged(const QString &text);
    /// A result has been counted.
    void resultCounted(bool success, const QString &type, const QString &copyFile,
                       const QString &imgData, const QString &errmsg);
    /// The service is being told that the photo was downloaded.
    void photoDownloaded(const OrderIdentity &order, const QString &imageId);
    void errorAdded(const QString &line);
    void finished(const RunSummary &summary);
    /// isBusy() is over after finished().
    void idle();

private:
    void startNextOrder();
    void onDetail(const ServiceReply &reply);
    void onDetailRead(const OrderDetailPtr &detail, const QString &folderName);
    void planCurrent(const OrderDetailPtr &detail, const QString &folderName);
    void onPlanned(const QString &folderError, const OrderPlan &plan);
    void startTask(const DistributionTask &task);
    void startOrderTask(TaskType type);
    void takeResult(const std::optional<TaskResult> &result);
    void count(const TaskResult &result);
    void countDownload(const TaskResult &result);
    void countDistribution(const TaskResult &result);
    void countDelivery();
    void settle(const TaskResult &result);
    void addErrorsOf(const TaskResult &result);
    void addErrors(const QString &lines, const QString &file = {});
    void completeOrder();
    void proveOrder();
    void proveOrder(const QVector<EarlierFile> &earlier);
    void skipOrder(const QString &reason);
    void finish();
    void announceIdle();
    void announceStep();
    const OrderData &current() const { return orders_.at(index_); }

    PerformTask perform_;
    WorkerPool pool_;
    ImageFetches fetches_;
    DownloadReports reports_;
    DistributionRecording recording_;
    LatestCall detailCall_;
    Latest reading_; ///< of its reply

    QVector<OrderData> orders_;
    RunSettings settings_;
    QStringList errors_;
    QStringList refused_;
    bool running_ = false;
    /// Shared with the tasks: one that has not begun when it is set does nothing.
    StopFlag stopFlag_;
    ordersatwork::Claim claim_; ///< to the current order
    int completed_ = 0;
    QVector<ProvedOrder> proofs_;
    Latest proving_;        ///< of the current order
    QSet<QString> folders_; ///< of the orders so far: no two orders may be mixed in one

    // The current order.
    int index_ = -1;
    OrderDetailPtr detail_;
    QString orderFolder_;
    PlannedPictures pictures_;
    QVector<FileOutcome> files_; ///< that were to be written so far
    QSet<QString> missing_;      ///< sources that the user has been told are not there
    int expected_ = 0;           ///< results
    int photoResults_ = 0;       ///< of them those before the products are made
    int copyPicFinishNum_ = 0;
    qint64 bytesWritten_ = 0;
    int proFinishNum_ = 0;
    int downPhotoFinishNums_ = 0;
    bool isSaveHtml_ = false;
    /// Files of each photo that are still to come before the service is told of it, by its id; no
    /// photo that one of them has failed for is here.
    QHash<QString, int> outstanding_;
    int listSize_ = 0;    ///< photos of the order that can be downloaded
    int listSettled_ = 0; ///< of them those that need nothing any more

    int tasksInFlight_ = 0;
    std::optional<TaskType> orderTask_; ///< type of the task after the photos that is going on
    std::shared_ptr<StepProgress> productProgress_;
    QTimer stepTimer_;
};
