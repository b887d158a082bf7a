#pragma once

#include "ledger/ledgerrecords.h"

#include <QStringList>

class QSqlDatabase;

/// The questions that the ledger answers. Lives on the ledger's thread, for as long as one
/// question is asked (Ledger::ask, Ledger::answer); there it sees everything that was written
/// before it was asked. Answers nothing when there is no ledger.
///
/// Where several rows are about one file the newest is the one that counts. Rows are ordered by
/// when they were written, not by their times: a clock may be set back.
class LedgerReader
{
public:
    /// \a database may be null, or closed; it is not owned.
    explicit LedgerReader(const QSqlDatabase *database) : database_(database) {}

    bool isOpen() const;

    /// The finished copies whose source had that name, size and time; for each stamp, newest first.
    QVector<QVector<ledger::Copy>> copiesLike(const QVector<ledger::FileStamp> &stamps) const;
    /// The finished copies whose source had those bytes; for each hash, newest first.
    QVector<QVector<ledger::Copy>> copiesOf(const QVector<ledger::Hash> &sourceHashes) const;

    /// The newest copy onto each file of the folder \a target (either form, without case), finished
    /// or not: after an unfinished one nobody knows what stands there.
    QVector<ledger::Copy> copiesInto(const QString &target) const;
    /// The same for the folder and all below it; only those of \a works, unless that is empty.
    QVector<ledger::Copy> copiesBelow(const QString &target,
                                      const QVector<ledger::Work> &works = {}) const;
    /// The newest copy onto each of these files, in their order; one with id 0 where there is none.
    QVector<ledger::Copy> copiesOnto(const QStringList &targets) const;
    /// Every finished copy onto one of these files that is still to be registered, of whichever
    /// run.
    QVector<ledger::Copy> awaitedOnto(const QStringList &targets) const;

    /// All copies made for an order, newest first; only those of \a works, unless that is empty.
    QVector<ledger::Copy> copiesOfOrder(const OrderIdentity &order,
                                        const QVector<ledger::Work> &works = {}) const;
    QVector<ledger::Deletion> deletionsOfOrder(const OrderIdentity &order) const;

    /// What runs of sessions other than \a session do with an order and have not ended.
    QVector<ledger::Entry> underWayElsewhere(const OrderIdentity &order, qint64 session) const;
    /// What was copied from \a desk for an order and is still to be registered, the newest first,
    /// runs that still go on in this or another program left out.
    QVector<ledger::Entry> unregistered(const ledger::Desk &desk) const;
    /// Deletions that were announced and are not both carried out and reported, of the same.
    QVector<ledger::Deletion> openDeletions(const ledger::Desk &desk) const;
    /// Deletions that the service was asked for, and of which the program does not know what
    /// became: it ended first, or no answer came. Of the same.
    QVector<ledger::Deletion> unansweredDeletions(const ledger::Desk &desk) const;
    /// What the tool keeps for the next time, the latest saved first.
    QVector<ledger::Pending> pending(const ledger::Desk &desk) const;

    ledger::HistoryPage history(const ledger::HistorySearch &search) const;
    /// What a run did, in the order in which it began with the orders.
    QVector<ledger::Entry> entriesOf(ledger::RunId run) const;
    /// The files of an entry in the order in which they were begun, after \a after.
    QVector<ledger::Copy> copiesOfEntry(ledger::EntryId entry, ledger::CopyId after = 0,
                                        int most = 10000) const;
    QVector<ledger::Deletion> deletionsOfEntry(ledger::EntryId entry) const;

    ledger::Extent extent() const;

private:
    QVector<ledger::Entry> withVolumes(QVector<ledger::Entry> entries) const;

    const QSqlDatabase *database_;
};
