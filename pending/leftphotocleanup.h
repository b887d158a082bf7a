#pragma once

#include "ledger/ledgerrecords.h"
#include "net/orderfiles.h"
#include "net/orderlookup.h"
#include "pending/leftfiles.h"
#include "tasks/ordersatwork.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

/// Removes files of photos that the service deleted while the disk did not: for one order after the
/// other it asks the service anew who the order is and what is listed of it, in every list that
/// there is, and the disk only then. What becomes of a file is in the ledger at once. Lives on the
/// interface thread and never blocks; deleting it leaves the files that have not had their turn.
class LeftPhotoCleanup : public QObject
{
    Q_OBJECT

public:
    /// What a search tells of an order.
    struct FoundOrder
    {
        OrderIdentity order;
        QString folder; ///< where an import puts its files, wire form
        QVector<orderfiles::ListedFile> listed;

        OrderIdentity identity() const { return order; }
    };

    /// \a tool is what has the orders in hand meanwhile, as its card is called.
    explicit LeftPhotoCleanup(const QString &tool, QObject *parent = nullptr);

    /// False, and nothing happens, while busy. Files of orders of another branch stay.
    bool start(const QVector<ledger::Deletion> &files, const orderqueries::Identity &identity,
               const QString &publicPath);
    bool isBusy() const { return busy_; }

signals:
    /// \a text is what to tell the user.
    void finished(const QString &text);

private:
    void nextOrder();
    void onFound(const OrderLookup<FoundOrder>::Answer &answer);
    void list(const FoundOrder &order);
    void onListing(const FoundOrder &order, const ServiceReply &reply);
    void onRemoved(const QVector<leftfiles::Result> &results);
    QVector<ledger::Deletion> filesOf(const OrderIdentity &order) const;

    QString tool_;
    orderqueries::Identity identity_;
    QString publicPath_;
    OrderLookup<FoundOrder> lookup_;
    LatestCall listing_;
    QString timestamp_; ///< of the listing that is asked for
    QVector<ledger::Deletion> files_;
    QVector<ledger::OrderKey> orders_; ///< those that have not had their turn
    QVector<leftfiles::Result> results_;
    QStringList problems_;
    ordersatwork::Claim claim_;
    bool busy_ = false;
};
