#pragma once

#include "ledger/ledgerrecords.h"
#include "photoimport/orders/photoorder.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QVector>

#include <optional>

class PhotoRegistrar;

/// What earlier runs copied for an order without the service being told of it.
struct UnregisteredPhotos
{
    OrderInfo order;          ///< as it is listed now, with a job for each photo
    QVector<PhotoMode> modes; ///< of the jobs
    /// A photo that lies where the order's do not go any more; there are no jobs then. Announcing
    /// it would name a place that the order does not have.
    QString elsewhere;

    /// What of \a copies the service is still to be told of, each photo once. \a order as the
    /// service lists it now: folder and identity are its own.
    static UnregisteredPhotos of(const PhotoOrder &order, const QVector<ledger::Copy> &copies);
};

/// Tells the service of such photos: first of the order's folder, then, when it took that, of each
/// photo. Interface thread.
class UnregisteredPhotosRegistration : public QObject
{
    Q_OBJECT

public:
    struct Outcome
    {
        int taken = 0;        ///< photos
        QStringList refusals; ///< what the service did not take, and why; a line each
    };

    /// \a registrar, which may be used for other photos too, outlives this.
    explicit UnregisteredPhotosRegistration(PhotoRegistrar *registrar, QObject *parent = nullptr);

    void start(const UnregisteredPhotos &photos, const orderqueries::Identity &identity);
    bool isFor(const OrderIdentity &order) const { return orders_.contains(order); }
    /// What became of all that was started; nothing before the last answer and when nothing was.
    std::optional<Outcome> take();
    /// No answers come any more.
    void abandon();

private:
    struct Order
    {
        UnregisteredPhotos photos;
        orderqueries::Identity identity;
        QSet<QString> awaited; ///< targets
    };

    void announcePhotos(const OrderIdentity &orderId);
    void onPhoto(const OrderIdentity &orderId, const PhotoInfo &photo, const QString &refusal);
    void refuseAll(const OrderIdentity &orderId, const QString &reason);

    PhotoRegistrar *registrar_;
    QHash<OrderIdentity, Order> orders_; ///< with answers to come
    std::optional<Outcome> outcome_;
};
