#pragma once

#include "ledger/ledgerrecords.h"
#include "pending/pendinglines.h"
#include "tasks/latest.h"

#include <QObject>
#include <QVector>

#include <functional>

/// The orders whose files earlier runs of a tool copied and of which the service was not told, as
/// the ledger knows them, of every branch of the account. Interface thread, waits for nothing.
class UnregisteredOrders : public QObject
{
    Q_OBJECT

public:
    /// Whether an order is offered now: not while a window says of it itself that it is not
    /// registered.
    using IsOffered = std::function<bool(const OrderIdentity &order)>;

    explicit UnregisteredOrders(IsOffered isOffered, QObject *parent = nullptr);

    /// Before anything else.
    void setWork(ledger::Work work) { work_ = work; }
    /// Asks the ledger anew; changed() follows.
    void refresh();
    bool knows(const OrderIdentity &order) const;
    /// What is offered in \a branch, an entry for each run.
    QVector<ledger::Entry> in(const QString &branch) const;
    /// For each branch, of Kind::Unregistered or Kind::PartlyCopied.
    QVector<pendinglines::Count> counts(pendinglines::Kind kind) const;
    /// Nothing more is to be done about those of \a branch.
    void ignore(const QString &branch);

signals:
    void changed();

private:
    ledger::Work work_ = ledger::Work::Unknown;
    IsOffered isOffered_;
    Latest asking_;
    QVector<ledger::Entry> entries_;
};
