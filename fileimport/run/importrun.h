#pragma once

#include "fileimport/rules/importrecords.h"
#include "fileimport/run/importrecording.h"
#include "fileimport/run/orderregistration.h"
#include "files/transferprogress.h"
#include "tasks/ordersatwork.h"
#include "tasks/workerpool.h"
#include "widgets/boxes/boxtext.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <memory>

class ImportFileCopyRunnable;

/// The order of steps of an import: copies the files of one order after the other (up to four files
/// at once), registers each order when none of its files is waiting or being copied, and goes on.
///
/// A run works on its own copy of the orders; results name the order by its id and the file by its
/// position, so it does not matter what the window shows meanwhile, as long as nobody chooses other
/// files for an order that isAtWork(). Succeeded and failed are counted from the states of the
/// files. Files can also be retried outside a run: their order is registered when it is complete,
/// and nothing else starts.
///
/// Lives on the interface thread and never blocks; copying and listing happen on workers.
/// Destroying it while hasLiveTasks() waits for them: release it on tasksEnded() instead.
class ImportRun : public QObject
{
    Q_OBJECT

public:
    explicit ImportRun(ImportMode mode, QObject *parent = nullptr);
    ~ImportRun() override;

    /// What to tell the user when one of \a orders is in another tool's hands; empty when none is.
    /// To be asked before start(), retry() and registerAgain().
    QString refusalOf(const QVector<ImportOrder> &orders) const;
    /// Starts importing every order that has a file not yet imported. False, and nothing happens,
    /// when there is none.
    bool start(const QVector<ImportOrder> &orders, const orderqueries::Identity &identity);
    /// Cancels everything; what was not started stays waiting, nothing is registered any more.
    void stopAllImports();
    /// Copies one file of \a order anew.
    void retry(const ImportOrder &order, int fileIndex, const orderqueries::Identity &identity);
    /// Registers an order whose files are copied but which the service was not told of.
    void registerAgain(const ImportOrder &order, const orderqueries::Identity &identity);
    /// Marks those of freshly listed \a orders whose files are copied but which the service was not
    /// told of: they keep the folder that the files lie in.
    void keepMarks(QVector<ImportOrder> *orders) const;
    /// How many orders that concerns, listed or not.
    int unregisteredOrders() const;
    /// The answer to resubmitNeeded(): try again, or stop the import.
    void answerResubmit(const OrderIdentity &orderId, bool again);

    /// Whether the order belongs to the run, or any of its files is still being copied (after a
    /// stop too), or it is being registered.
    bool isAtWork(const OrderIdentity &orderId) const;
    /// Whether a registration of the order is under way or waits for answerResubmit().
    bool isRegistering(const OrderIdentity &orderId) const
    {
        return registrations_.contains(orderId);
    }
    bool isRunning() const { return !sequence_.isEmpty(); }
    bool hasLiveTasks() const { return !tasks_.isEmpty(); }
    /// Whether anything goes on that a new search would pull the ground from under.
    bool isBusy() const { return isRunning() || hasLiveTasks() || !registrations_.isEmpty(); }
    /// Over all orders of the run; of the retried files' orders when there is no run.
    TransferProgress progress() const;

signals:
    /// The order belongs to another branch than that in whose name it was to be imported; nothing
    /// is done for it. \a text is what to tell the user.
    void orderRefused(const QString &text);
    void orderStarted(const OrderIdentity &orderId);
    /// A file changed its state or message.
    void fileChanged(const OrderIdentity &orderId, const ImportFile &file);
    /// Whether files of the order are being copied, or about to be; told after every file.
    void orderActivityChanged(const OrderIdentity &orderId, bool importing);
    /// Several files changed at once.
    void filesChanged(const OrderIdentity &orderId, const QVector<ImportFile> &files);
    void orderRegistered(const OrderIdentity &orderId, const RegistrationResult &result);
    /// The files are copied, but the service was not told.
    void orderLeftUnregistered(const OrderIdentity &orderId);
    /// What the service found differs from what was announced: the files concerned have failed, and
    /// the run is over.
    void mismatchFound(const OrderIdentity &orderId, const BoxText &notice);
    /// Ask \a question and call answerResubmit().
    void resubmitNeeded(const OrderIdentity &orderId, const QString &question,
                        const QString &certificateError);
    /// Every order of the run is imported; \a unannounced is what to tell of files whose kind is
    /// never registered, empty when there are none.
    void allImported(const QString &unannounced);
    /// The run is over, for whatever reason.
    void switchedOff();
    /// The last copy task has ended.
    void tasksEnded();

private:
    struct Task
    {
        std::shared_ptr<ImportFileCopyRunnable> runnable;
        OrderIdentity orderId;
        int fileIndex = 0;
        bool abandoned = false; ///< stopped: its result changes its own file and nothing else
        bool inPool = false;    ///< otherwise the ledger is still noting it
    };

    bool refuses(const ImportOrder &order, const orderqueries::Identity &identity);
    void startNextOrder();
    void startOrder(const OrderIdentity &orderId);
    void feedPool();
    void startTasks(const OrderIdentity &orderId, const QVector<int> &fileIndexes);
    std::shared_ptr<ImportFileCopyRunnable> makeTask(const OrderIdentity &orderId,
                                                     const ImportFile &file);
    void begin(const QVector<std::shared_ptr<ImportFileCopyRunnable>> &started,
               const QVector<ledger::CopyId> &ids);
    void onFileCopyFinished(ImportFileCopyRunnable *runnable, const ImportFile &file);
    void onFileCopyCancelled(ImportFileCopyRunnable *runnable, const ImportFile &file);
    Task takeTask(ImportFileCopyRunnable *runnable);
    void afterLastTask();
    void storeResult(const OrderIdentity &orderId, const ImportFile &file);
    void afterResult(const OrderIdentity &orderId, const ImportFile &file);
    void upImportOrderPath(const ImportOrder &order);
    void importNextOrder(const OrderIdentity &orderId);
    void onRegistered(const OrderIdentity &orderId, const RegistrationResult &result);
    void failMismatched(const OrderIdentity &orderId, const importrequests::BatchReply &reply);
    void recordRegistration(const ImportOrder &order, const importrequests::BatchReply &reply);
    void dropRegistration(const OrderIdentity &orderId);
    void leaveUnregistered(const OrderIdentity &orderId);
    void switchOff();
    void endRecording();
    void settleClaim(const OrderIdentity &orderId);
    void tellActivity(const OrderIdentity &orderId);
    const ImportOrder &orderOf(const OrderIdentity &orderId) const
    {
        return *orders_.constFind(orderId);
    }
    bool isCurrent(const OrderIdentity &orderId) const
    {
        return isRunning() && orderId == current_;
    }
    bool isLive(const OrderIdentity &orderId, int fileIndex) const;
    bool isCopying(const OrderIdentity &orderId) const;
    bool hasTasks(const OrderIdentity &orderId) const;

    ImportMode mode_;
    orderqueries::Identity identity_;
    QHash<OrderIdentity, ImportOrder> orders_;
    QVector<OrderIdentity> sequence_; ///< the run's orders; empty while there is no run
    OrderIdentity current_;           ///< the run's order being copied or registered
    QVector<int> pending_;            ///< file indexes of the current order, last one first
    QVector<Task> tasks_;
    QHash<OrderIdentity, OrderRegistration *> registrations_;
    WorkerPool pool_;
    ImportRecording recording_;
    QHash<OrderIdentity, std::shared_ptr<ordersatwork::Claim>> claims_; ///< on the orders at work
    QTimer stopTimer_; ///< reports tasks that outlast a stop
};
