#pragma once

#include "ledger/ledgerrecords.h"
#include "net/orderqueries.h"
#include "net/servicecall.h"
#include "tasks/latest.h"

#include <QObject>
#include <QString>
#include <QVector>

/// Files that earlier windows deleted without the service knowing: lists them by the ledger, and
/// tells the service of them when the user wants it, one after the other. A file that stands there
/// again is not reported. Lives on the interface thread and never blocks.
class UnreportedDeletions : public QObject
{
    Q_OBJECT

public:
    explicit UnreportedDeletions(QObject *parent = nullptr);

    /// Asks the ledger anew.
    void refresh();
    QVector<ledger::Deletion> of(const QString &branch) const;

    /// Reports those of the branch of \a identity. Nothing happens while busy.
    void report(const orderqueries::Identity &identity);
    bool isBusy() const { return busy_; }
    /// Nothing more is to be done about those of \a branch.
    void dismiss(const QString &branch);

signals:
    /// There are others now.
    void changed();
    /// How a report() ended, for the user.
    void finished(const QString &text);

private:
    void reportNext();
    void onReply(const ServiceReply &reply);
    void end(const QString &problem);

    QVector<ledger::Deletion> files_;
    Latest asking_;
    LatestCall call_;
    orderqueries::Identity identity_;
    QVector<ledger::Deletion> pending_; ///< last one first
    int reported_ = 0;
    int standing_ = 0; ///< files that stand there again
    bool busy_ = false;
};
