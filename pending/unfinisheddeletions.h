#pragma once

#include "pending/leftphotocleanup.h"
#include "pending/pendinglines.h"
#include "tasks/latest.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QVector>

/// Photos that earlier windows deleted at the service and whose files still lie on the disk, and
/// those of which nobody knows whether the service has deleted them: lists them by the ledger, and
/// removes the files, asks the service or leaves all be when the user says so. Whichever tool
/// deleted them. Lives on the interface thread and never blocks.
class UnfinishedDeletions : public QObject
{
    Q_OBJECT

public:
    /// \a tool is what the windows' card is called.
    explicit UnfinishedDeletions(const QString &tool, QObject *parent = nullptr);

    /// Asks the ledger anew.
    void refresh();
    /// The kinds that are its business.
    static const QVector<pendinglines::Kind> &kinds();
    /// How many photos of that kind there are, of each branch of the account.
    QVector<pendinglines::Count> counts(pendinglines::Kind kind) const;

    /// Does what the user chose for those of a kind, in the branch of \a identity; nothing happens
    /// while something is under way. False when that is not its business.
    bool take(pendinglines::Kind kind, pendinglines::Offer offer,
              const orderqueries::Identity &identity, const QString &publicPath);

signals:
    /// There are others now.
    void changed();
    /// How that ended, for the user.
    void finished(const QString &text);

private:
    QVector<ledger::Deletion> of(pendinglines::Kind kind, const QString &branch) const;
    void keep(const QVector<ledger::Deletion> &files);

    Latest asking_;
    LeftPhotoCleanup cleanup_;
    QMap<pendinglines::Kind, QVector<ledger::Deletion>> files_;
};
