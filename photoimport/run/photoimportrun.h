#pragma once

#include "files/transferprogress.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/run/photorecording.h"
#include "photoimport/run/photoregistrar.h"
#include "photoimport/run/tfimportthreadmanager.h"
#include "photoimport/run/unregisteredphotos.h"
#include "tasks/latest.h"
#include "tasks/ordersatwork.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QVector>

/// A run of the photo import over the window's list of orders: makes the jobs of the files, hands
/// them to the pool, writes the results into the list, tells the service of what was imported, and
/// knows when all of that has ended. Orders can join while it goes on.
///
/// Lives on the interface thread and never blocks. Rows are positions in the list, which must keep
/// its orders and their files while isBusy(); results find their file by order and source path.
/// Destroying it while hasLiveWorkers() waits for the photos in work.
class PhotoImportRun : public QObject
{
    Q_OBJECT

public:
    /// \a orders must outlive the run.
    explicit PhotoImportRun(tforderlistmodel *orders, QObject *parent = nullptr);

    /// The number of workers and the pause; starting and stopping is the run's.
    tfimportthreadmanager *pool() { return &pool_; }

    /// Imports what is left to do of the files at \a indexes of the one row; of all files of every
    /// row when empty. False, and nothing happens, while an earlier start is still being prepared.
    bool start(const QVector<int> &rows, const QVector<int> &indexes,
               const orderqueries::Identity &identity);
    /// Drops all work. What is imported already is still registered.
    void stop();
    /// Tells the service again of imported files, and of the order's folder when it was refused.
    /// False and refused() when the order may not be worked on.
    bool registerAgain(int row, const QVector<int> &indexes,
                       const orderqueries::Identity &identity);
    /// Tells the service of what earlier runs left of \a order, which need not be listed:
    /// toldAgain() follows. False and refused() when the order may not be worked on.
    bool registerAgain(const PhotoOrder &order, const UnregisteredPhotos &photos,
                       const orderqueries::Identity &identity);
    /// Whether it is being told of them.
    bool isRegisteringAgain(const OrderIdentity &order) const { return left_.isFor(order); }
    /// Tells the service of nothing more.
    void cancelRegistrations();

    /// Whether anything is queued, active or about to be.
    bool isImporting() const { return !preparing_.isEmpty() || pool_.isBusy(); }
    int pendingRegistrations() const { return registrar_.pending(); }
    /// Whether the list must keep what it holds.
    bool isBusy() const { return isImporting() || pendingRegistrations() > 0; }
    bool isQueuedOrActive(int row) const;
    bool hasLiveWorkers() const { return pool_.hasLiveWorkers(); }
    /// Over the orders of the run. The list's rows are brought up to date by the way.
    TransferProgress progress();

public slots:
    /// Connected to the pool's signals.
    void onPhotoImported(const OrderInfo &orderinfo, const QString &fileName, int photoindex,
                         bool success, const QString &errorMsg);
    void onFailureExplained(const OrderInfo &orderinfo, int photoindex, const JobFailure &failure);
    void onOrderProgressUpdated(const OrderInfo &orderinfo, int completed, int total);

signals:
    /// A file's states changed; \a index is its position among the order's files.
    void fileChanged(const OrderIdentity &orderId, int index);
    /// One of isImporting(), pendingRegistrations() and isBusy() may have changed.
    void stateChanged();
    /// A start was refused, perhaps because of the folder \a path (Windows form, may be empty).
    void refused(const QString &message, const QString &path);
    /// All of the run is imported and registered, or failed to be.
    void ended(const RunOutcome &outcome);
    /// Nothing goes on any more; what became of earlier runs' photos.
    void toldAgain(const UnregisteredPhotosRegistration::Outcome &outcome);
    /// Of a run that has ended or was stopped nothing goes on any more, and the ledger was told of
    /// it.
    void recorded();
    /// Nothing goes on any more, and the service knows of more than the list says.
    void countsStale();
    /// After a stop: the last worker has finished its photo.
    void workersEnded();

private:
    /// Takes the orders in hand. Those of another branch, or in another tool's hands, are not
    /// worked on: nothing is taken then, and the first of them is told by refused().
    bool takeInHand(const QVector<const PhotoOrder *> &orders,
                    const orderqueries::Identity &identity);
    void begin(const QList<OrderInfo> &orders);
    void releaseOrders();
    void onStartRefused(const QString &message, const QString &path);
    void onRegistered(const OrderIdentity &orderId, const PhotoInfo &photo, RegistrationState state,
                      const QString &reason);
    void releaseWork();
    void afterStep();

    tforderlistmodel *orders_;
    tfimportthreadmanager pool_;
    PhotoRegistrar registrar_;
    UnregisteredPhotosRegistration left_{&registrar_};
    PhotoRecording recording_;
    orderqueries::Identity identity_;
    Latest start_;                  ///< that is being prepared
    QSet<OrderIdentity> preparing_; ///< orders of that start: their jobs are being made
    ordersatwork::Claim claim_;
    bool open_ = false;             ///< begun, and neither ended nor stopped
    bool stale_ = false;            ///< something was registered
    QSet<OrderIdentity> batch_;     ///< orders of the run
    QSet<OrderIdentity> announced_; ///< those whose folder the service was told
};
