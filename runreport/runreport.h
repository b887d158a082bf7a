#pragma once

#include "ledger/ledgerrecords.h"

#include <QByteArray>
#include <QHash>
#include <QMap>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

class LedgerReader;

/// What one run did for one order.
struct OrderReport
{
    struct Failure
    {
        QString file;
        QString reason;
    };

    OrderIdentity order;
    QString number;
    QString name;
    int chosen = 0;
    int copied = 0;
    int verified = 0;        ///< copied, and proved by more than their size
    QMap<Proof, int> proofs; ///< how many of the copied ones are proved how
    int registered = 0;
    int unregistered = 0; ///< copied, and the service was not told
    int unannounced = 0;  ///< copied, of a kind that the service is not told of
    QVector<Failure> failures;

    /// "已从服务器读回 38，大小一致 2"
    QString proofText() const;

    static OrderReport of(const ledger::Entry &entry, const QVector<ledger::Copy> &copies);
};

/// What one run did, order by order, as the ledger tells it.
struct RunReport
{
    ledger::RunId run = 0;
    QVector<OrderReport> orders;

    /// Of the latest run of this process that was for \a work; empty when there was none, or when
    /// it is the run \a told. The ledger's thread.
    static RunReport ofLatest(const LedgerReader &reader, ledger::Work work,
                              ledger::RunId told = 0);

    /// Failures of what the ledger is not told of, such as forms made of a photo; of orders that
    /// the run was not for they are left out.
    void add(const QHash<OrderIdentity, QVector<OrderReport::Failure>> &failures);

    bool isEmpty() const { return orders.isEmpty(); }
    /// Whether every chosen file was copied and registered where it was to be.
    bool isGood() const;
    int failed() const;
    int unregistered() const;
    /// All orders in one line.
    QString headline() const;
    /// One line an order, and below it its failures.
    QStringList lines() const;
    QByteArray csv() const;
};
Q_DECLARE_METATYPE(RunReport)
