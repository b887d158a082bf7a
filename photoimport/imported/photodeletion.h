#pragma once

#include "net/servicecall.h"
#include "pending/photodeletionrecording.h"
#include "photoimport/orders/photoorder.h"
#include "tasks/latest.h"
#include "tasks/ordersatwork.h"

#include <QObject>
#include <QString>
#include <QStringList>

class TFDelLocalPhotoImg;

/// Photos of one order that are to be deleted.
struct DeletionRequest
{
    OrderIdentity orderId;
    QString orderName;
    QStringList ids;   ///< the service's
    QStringList names; ///< of the same photos
    QStringList paths; ///< where the files themselves lie, in Windows form
    PhotoMode photoMode = PhotoMode::Photos;
    QString folder; ///< the order's import folder, in Windows form
    ledger::OrderKey key = {};
};

/// What deleting the photos with these service ids and names asks for. Never a path outside of the
/// order's folder, and none for an order without one.
DeletionRequest deletionOf(const PhotoOrder &order, const QStringList &ids,
                           const QStringList &names, PhotoMode photoMode);

/// Deletes imported photos: the ledger first, then the service; when that has agreed, the disk, on
/// a thread of its own. One deletion at a time. Lives on the interface thread; destroying it while
/// isRemoving() waits for the disk.
class PhotoDeletion : public QObject
{
    Q_OBJECT

public:
    explicit PhotoDeletion(QObject *parent = nullptr);

    /// False, and nothing happens, while another deletion is under way; false and refused() for an
    /// order of another branch, or one that another tool has in hand.
    bool start(const DeletionRequest &request, const orderqueries::Identity &identity);
    /// Gives up asking the service, which is then unanswered(), or refused() when it was not asked
    /// yet; what it has agreed to goes on. False when nothing was to be asked.
    bool cancel();
    bool isActive() const { return asking_ || isRemoving(); }
    bool isRemoving() const;

signals:
    /// The service agreed; the files are being removed.
    void selectedPhotosDeleted(const DeletionRequest &deleted);
    /// The service was asked and has not answered: it may have deleted the photos or not. The files
    /// are untouched.
    void unanswered(const DeletionRequest &request);
    /// Nothing was deleted.
    void refused(const DeletionRequest &request, const ServiceReply &reply);
    /// The files are gone from the disk.
    void removed();

private:
    static ServiceReply refusal(const QString &text);
    void ask(const orderqueries::Identity &identity);
    void onReply(const DeletionRequest &request, const ServiceReply &reply);

    Latest reading_;
    LatestCall call_;
    TFDelLocalPhotoImg *thread_;
    PhotoDeletionRecording recording_;
    DeletionRequest request_; ///< the last
    bool asking_ = false;
    ordersatwork::Claim claim_; ///< while isActive()
};
