#pragma once

#include "pending/leftphotocleanup.h"
#include "pending/pendinglines.h"
#include "tasks/latest.h"

#include <QObject>
#include <QString>
#include <QVector>

/// Photos that earlier windows deleted at the service and whose files still lie on the disk: lists
/// them by the ledger, and removes the files or leaves them be when the user says so. Whichever
/// tool deleted them. Lives on the interface thread and never blocks.
class UnfinishedDeletions : public QObject
{
    Q_OBJECT

public:
    /// \a tool is what the windows' card is called.
    explicit UnfinishedDeletions(const QString &tool, QObject *parent = nullptr);

    /// Asks the ledger anew.
    void refresh();
    /// How many there are, of each branch of the account.
    QVector<pendinglines::Count> counts() const;

    /// Removes the files of the branch of \a identity, those that may go; nothing happens while
    /// that is under way.
    void remove(const orderqueries::Identity &identity, const QString &publicPath);
    /// Those of \a branch are not offered any more.
    void keep(const QString &branch);

signals:
    /// There are others now.
    void changed();
    /// How remove() ended, for the user.
    void finished(const QString &text);

private:
    QVector<ledger::Deletion> of(const QString &branch) const;

    Latest asking_;
    LeftPhotoCleanup cleanup_;
    QVector<ledger::Deletion> files_;
};
