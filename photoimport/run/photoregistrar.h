#pragma once

#include "net/servicecall.h"
#include "photoimport/rules/photoimportrecords.h"
#include "tasks/requestqueue.h"

#include <QObject>
#include <QString>

/// Tells the service of imported photos and of orders' folders, a few requests at a time and in the
/// order in which they were asked for; the rest waits here, so that a slow service does not pile up
/// thousands of connections. A refusal changes nothing on disk: ask again to retry.
///
/// Lives on the interface thread; looks at the disk on a worker. Destroying it abandons what waits.
class PhotoRegistrar : public QObject
{
    Q_OBJECT

public:
    static constexpr int requestsAtOnce = 4;

    explicit PhotoRegistrar(QObject *parent = nullptr);

    /// Announces the photo at \a photoIndex of \a order, imported in \a photoMode, in the name of
    /// \a identity. Jobs that are not registered are passed over in silence.
    void upImportPhotoInfo(const OrderInfo &order, int photoIndex, PhotoMode photoMode,
                           const orderqueries::Identity &identity);
    /// Announces the folder of \a order.
    void upImportOrderData(const OrderInfo &order, const orderqueries::Identity &identity);

    /// Requests waiting or under way.
    int pending() const { return queue_.pending(); }
    /// Forgets what waits; what is under way ends silently.
    void cancel() { queue_.abandon(); }

signals:
    /// \a photo is the job as it was handed in.
    void photoRegistered(const OrderIdentity &orderId, const PhotoInfo &photo);
    /// \a reason is what to tell the user.
    void photoRefused(const OrderIdentity &orderId, const PhotoInfo &photo, const QString &reason);
    void orderRegistered(const OrderIdentity &orderId);
    void orderRefused(const OrderIdentity &orderId, const QString &reason);
    /// Nothing waits or is under way any more.
    void idle();

private:
    RequestQueue queue_;
};
