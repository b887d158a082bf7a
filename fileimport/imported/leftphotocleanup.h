#pragma once

#include "fileimport/rules/importrequests.h"
#include "ledger/ledgerrecords.h"
#include "net/orderlookup.h"
#include "pending/leftfiles.h"
#include "tasks/ordersatwork.h"

#include <QObject>
#include <QString>
#include <QVector>

/// Removes files of photos that the service deleted while the disk did not: for one order after the
/// other it asks the service who the order is and which photos it names now, and the disk only
/// then. What becomes of a file is in the ledger at once. Lives on the interface thread and never
/// blocks; deleting it leaves the files that have not had their turn.
class LeftPhotoCleanup : public QObject
{
    Q_OBJECT

public:
    explicit LeftPhotoCleanup(QObject *parent = nullptr);

    /// Whether \a deletion is of a photo that this tool lists: others are listed elsewhere.
    static bool isOfOriginals(const ledger::Deletion &deletion);

    /// False, and nothing happens, while busy. Files of orders of another branch stay.
    bool start(const QVector<ledger::Deletion> &files, const orderqueries::Identity &identity,
               const QString &publicPath);
    bool isBusy() const { return busy_; }

signals:
    /// \a text is what to tell the user.
    void finished(const QString &text);

private:
    void onOrders(const OrderLookup<ImportOrder>::Answer &answer);
    void nextOrder();
    void list(const ImportOrder &order);
    void onListing(const ImportOrder &order, const ServiceReply &reply);
    void onRemoved(const QVector<leftfiles::Result> &results);
    QVector<ledger::Deletion> filesOf(const OrderIdentity &order) const;

    OrderLookup<ImportOrder> lookup_;
    LatestCall listing_;
    QString timestamp_; ///< of the listing that is asked for
    QVector<ledger::Deletion> files_;
    QVector<ImportOrder> orders_; ///< those that have not had their turn
    QVector<leftfiles::Result> results_;
    QStringList problems_;
    ordersatwork::Claim claim_;
    bool busy_ = false;
};
