#pragma once

#include "distribution/proof/oldfiles.h"
#include "tasks/ordersatwork.h"

#include <QObject>
#include <QVector>

#include <vector>

/// Puts the files of earlier runs away, order by order, while no other tool may work on the orders.
/// Lives on the interface thread and never blocks; what has begun goes on when this dies.
class OldFileRun : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// False, and nothing happens, while busy, without files, or when another tool has one of the
    /// orders in hand: \a refusal then says so.
    bool start(const QVector<ProvedOrder> &orders, const QString &tool, QString *refusal);
    bool isBusy() const { return waiting_ > 0; }

signals:
    /// One result an order.
    void finished(const QVector<PutAway> &results);

private:
    int waiting_ = 0;
    QVector<PutAway> results_;
    ordersatwork::Claim claim_;
};
