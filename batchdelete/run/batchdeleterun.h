#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "batchdelete/run/deletionrecording.h"
#include "batchdelete/run/deletionreporter.h"
#include "files/transferprogress.h"
#include "net/servicecall.h"
#include "tasks/latest.h"
#include "tasks/ordersatwork.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

class BatchdeleteThread;
class FileScanThread;

/// How a run ended.
struct DeletionSummary
{
    enum class End {
        Completed,    ///< every order had its turn
        Stopped,      ///< by the user
        Declined,     ///< the user let a report be; no further order was begun
        NotAnnounced, ///< the service did not take an announcement
    };

    End end = End::Completed;
    int orders = 0;    ///< of the run
    int untouched = 0; ///< orders that had no turn
    int skipped = 0;   ///< orders that were passed over; their note says why
    int deleted = 0;   ///< files gone, and reported
    int failed = 0;    ///< files not deleted, or not reported
};
Q_DECLARE_METATYPE(DeletionSummary)

/// The order of steps of a batch deletion: for one order after the other, scan its folder, announce
/// its files, then delete and report them one at a time. Also deletes and reports single files
/// again.
///
/// A run works on its own copy of the orders. Nothing is deleted that was not announced as it is,
/// and of an announced file the service is told that it is gone only when it is. Lives on the
/// interface thread and never blocks. Destroying it while isBusy() waits for the file being
/// deleted: release it on ended() instead.
class BatchDeleteRun : public QObject
{
    Q_OBJECT

public:
    explicit BatchDeleteRun(QObject *parent = nullptr);
    ~BatchDeleteRun() override;

    /// Deletes the files of \a orders. False, and nothing happens, while busy or without orders.
    bool start(const QVector<BatchDeleteOrderInfo> &orders, const orderqueries::Identity &identity,
               const QStringList &publicRoots);
    /// Reports files of \a order that are gone unreported, and deletes and reports those that could
    /// not be deleted, announcing first what has changed since it was; other files at \a indexes
    /// are left alone. False, and nothing happens, while busy or when there is nothing to retry.
    bool retry(const BatchDeleteOrderInfo &order, const QVector<int> &indexes,
               const orderqueries::Identity &identity, const QStringList &publicRoots);
    /// Ends after the current file. Asked again, does not wait for an answer of the service either;
    /// the file then counts as not reported.
    void stop();
    /// Ends as stop() does, for a window that closes: asks nothing any more, and waits for an
    /// answer for five seconds at most.
    void close();

    /// The answer to pausedForDeclines(): whether the remaining files are to go, too. Nobody is
    /// asked about their reports then. Ignored unless it is waited for.
    void answerPause(bool goOn);

    DeletionReporter *reporter() { return &reporter_; }
    bool isRunning() const { return phase_ != Phase::Idle && !retrying_; }
    bool isStopping() const { return stopping_; }
    /// Whether anything goes on that a new search would pull the ground from under.
    bool isBusy() const { return phase_ != Phase::Idle || !threads_.isEmpty(); }
    /// Whether it is finding out what there is in its order.
    bool isLooking() const { return phase_ == Phase::Checking; }
    /// Whether this is the order whose files it has in hand.
    bool isAt(const OrderIdentity &order) const;
    /// Which of its orders the run is at, from 1.
    int turn() const { return current_ + 1; }
    int turns() const { return orders_.size(); }
    /// Of the order it is at.
    TransferProgress progress() const;

signals:
    void orderStarted(const OrderIdentity &orderId);
    void scanProgress(const OrderIdentity &orderId, int count);
    /// The order's files from now on: what the service has yet to be told of when the order is
    /// begun, with what is about to be announced when it has been scanned, and whenever many change
    /// at once.
    void filesListed(const OrderIdentity &orderId, const QVector<BatchDeleteFileInfo> &files);
    void fileChanged(const OrderIdentity &orderId, int index, const BatchDeleteFileInfo &file);
    /// Why the order was skipped, or not finished.
    void orderNoted(const OrderIdentity &orderId, const QString &note);
    /// The order has had its turn to the end, or was skipped.
    void orderDone(const OrderIdentity &orderId);
    void announcementFailed(const ServiceReply &reply);
    /// Several reports in a row were let be. Ask whether to go on and call answerPause().
    void pausedForDeclines();
    /// The run is over. Not for retries.
    void finished(const DeletionSummary &summary);
    /// Nothing is going on any more.
    void ended();

private:
    enum class Phase { Idle, Checking, Announcing, Deleting, Reporting, Paused };

    BatchDeleteOrderInfo &order() { return orders_[current_]; }
    void begin(const QVector<BatchDeleteOrderInfo> &orders, const orderqueries::Identity &identity,
               const QStringList &publicRoots);
    void endSoon();
    void startNextOrder();
    void lookAtFolder(const std::function<void(const QString &refusal)> &next);
    void scanOrder();
    void onScanned(const FileScanResult &result);
    void announce(const QVector<BatchDeleteFileInfo> &files);
    void onAnnounced(const ServiceReply &reply);
    void processNextFile();
    void deleteFile();
    void onFileProcessed(BatchDeleteFileInfo file);
    void onFolderGone(BatchDeleteFileInfo file, const QString &reason);
    void report(const BatchDeleteFileInfo &file);
    void onReported(BatchDeleteFileInfo file, bool reported);
    void listFiles(const QVector<BatchDeleteFileInfo> &files);
    void setFile(int index, const BatchDeleteFileInfo &file);
    void setFailed(const BatchDeleteFileInfo &file);
    void note(const QString &text);
    void skipOrder(const QString &reason);
    void finish(DeletionSummary::End end);
    void threadEnded(BatchdeleteThread *thread);
    void endIfIdle();
    DeletionSummary summary(DeletionSummary::End end) const;

    orderqueries::Identity identity_;
    QStringList publicRoots_; ///< see deletionrules
    QVector<BatchDeleteOrderInfo> orders_;
    int current_ = -1;
    QByteArray holder_; ///< tells the folder around the current order's, as it was at its beginning
    QVector<int> pending_; ///< indexes of the order's files still to be processed, last one first
    int file_ = -1;        ///< index of the file being processed
    int skipped_ = 0;
    Latest step_; ///< in the background
    Phase phase_ = Phase::Idle;
    bool retrying_ = false;
    bool stopping_ = false;
    bool declined_ = false;
    int declinedInARow_ = 0;
    bool closing_ = false;
    std::vector<ordersatwork::Claim> claims_;
    QStringList refusals_; ///< for each order, empty unless it is in another tool's hands
    std::unique_ptr<FileScanThread> scan_;
    LatestCall announcement_;
    DeletionReporter reporter_;
    DeletionRecording recording_;
    DeletionRecording::Rows announcing_;
    QVector<BatchdeleteThread *> threads_; ///< not ended yet; one, but for moments
    QTimer closingTimer_;
};
