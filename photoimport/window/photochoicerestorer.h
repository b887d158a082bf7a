#pragma once

#include "net/orderlookup.h"
#include "pending/pendingbar.h"
#include "pending/pendingchoices.h"
#include "pending/unfinisheddeletions.h"
#include "pending/unregisteredorders.h"
#include "photoimport/orders/photoorder.h"

#include <QObject>

class LoadingOverlay;
class NoticeBar;
class PhotoImportRun;
class tfhomeorders;
class tforderlistmodel;

/// Remembers beyond another branch and beyond the window which photos were added and not imported,
/// and offers them again, as well as orders whose photos are copied and not registered, and files
/// of photos that were deleted at the service. Nothing starts by itself. Wires; interface thread.
class PhotoChoiceRestorer : public QObject
{
    Q_OBJECT

public:
    /// All of it the window's, which owns this.
    struct Place
    {
        QWidget *window;
        tforderlistmodel *orders;
        tfhomeorders *panel;
        PhotoImportRun *run;
        LoadingOverlay *overlay;
        NoticeBar *notices;
    };

    explicit PhotoChoiceRestorer(const Place &place);

    /// Asks what earlier windows left.
    void open();
    /// Photos were deleted: offers those of which files are left.
    void lookForLeftPhotos() { deletions_.refresh(); }

private:
    void connectTable();
    void connectRun();
    void take(pendinglines::Kind kind, pendinglines::Offer offer, const QString &branch);
    void countUnregistered();
    bool isOffered(const OrderIdentity &order) const;
    bool mayLookUp();
    void lookUp(const QVector<OrderLookup<PhotoOrder>::Wanted> &wanted,
                const OrderLookup<PhotoOrder>::Done &done);
    void show();
    void putBack(const OrderLookup<PhotoOrder>::Answer &answer);
    void registerAgain();
    void onFoundAgain(const QVector<PhotoOrder> &orders);
    void registerOrder(const PhotoOrder &order, const QVector<ledger::Copy> &copies);

    Place place_;
    PendingChoices choices_;
    PendingBar *bar_;
    OrderLookup<PhotoOrder> lookup_;
    UnregisteredOrders unregistered_;
    UnfinishedDeletions deletions_;
    bool wasBusy_ = false;
};
