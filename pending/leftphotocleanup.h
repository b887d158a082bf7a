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

/// Removes files of photos that the service deleted while the disk did not, or looks only whether
/// it has deleted them: for one order after the other it asks the service anew who the order is and
/// what is listed of it, in every list that there is, and the disk only then. What becomes of a
/// file is in the ledger at once. Lives on the interface thread and never blocks; deleting it
/// leaves the files that have not had their turn.
class LeftPhotoCleanup : public QObject
{
    Q_OBJECT

public:
    enum class Task {
        Remove, ///< the files that may go
        Verify, ///< nothing on the disk: what the service names no more is deleted there
    };

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
    bool start(Task task, const QVector<ledger::Deletion> &files,
               const orderqueries::Identity &identity, const QString &publicPath);
    bool isBusy() const { return busy_; }

signals:
    /// \a text is what to tell the user.
    void finished(const QString &text);

private:
    void nextOrder();
    void onFound(const OrderLookup<FoundOrder>::Answer &answer);
    void list(const FoundOrder &order);
    void onListing(const FoundOrder &order, const ServiceReply &reply);
    void verify(const QVector<ledger::Deletion> &files, const leftfiles::Listing &listing);
    void onRemoved(const QVector<leftfiles::Result> &results);
    QVector<ledger::Deletion> filesOf(const OrderIdentity &order) const;

    QString tool_;
    Task task_ = Task::Remove;
    orderqueries::Identity identity_;
    QString publicPath_;
    OrderLookup<FoundOrder> lookup_;
    LatestCall listing_;
    QString timestamp_; ///< of the listing that is asked for
    QVector<ledger::Deletion> files_;
    QVector<ledger::OrderKey> orders_; ///< those that have not had their turn
    QVector<leftfiles::Result> results_;
    int named_ = 0;     ///< photos that the service still has
    int forgotten_ = 0; ///< those that it has no more
    QStringList problems_;
    ordersatwork::Claim claim_;
    bool busy_ = false;
};
