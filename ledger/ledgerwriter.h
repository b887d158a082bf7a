#pragma once

#include "ledger/ledgerrecords.h"

#include <QHash>
#include <QPair>

#include <initializer_list>

class LedgerDatabase;
class QVariant;

/// Writes the ledger's rows, within a transaction that its caller begins and ends. For the ledger's
/// thread alone. Every function returns false when the database refused.
class LedgerWriter
{
public:
    /// \a database outlives it.
    explicit LedgerWriter(LedgerDatabase *database) : database_(database) {}

    /// The transaction was taken back: rows that were known are not there.
    void forgetRows();

    bool beginRun(ledger::RunId id, const ledger::NewRun &run, qint64 nowMs);
    bool endRun(ledger::RunId run, qint64 nowMs);

    /// \a first is the id of the first; each further one is less by one.
    bool beginCopies(ledger::CopyId first, ledger::RunId run, const ledger::OrderKey &order,
                     const QVector<ledger::NewCopy> &copies, qint64 nowMs);
    bool finishCopy(ledger::CopyId copy, const ledger::CopyResult &result, qint64 nowMs);
    bool failCopy(ledger::CopyId copy, const QString &reason);
    bool proveCopy(ledger::CopyId copy, const ledger::CopyResult &result);
    bool registerCopies(const QVector<ledger::CopyId> &copies, qint64 nowMs);
    bool refuseCopies(const QVector<ledger::CopyId> &copies, const QString &reason);
    bool dismissUnregistered(const ledger::Desk &desk, const OrderIdentity &order);

    bool beginDeletions(ledger::DeletionId first, ledger::RunId run, const ledger::OrderKey &order,
                        const QVector<ledger::NewDeletion> &deletions, qint64 nowMs);
    bool announceDeletions(const QVector<ledger::DeletionId> &deletions, qint64 nowMs);
    bool finishDeletion(ledger::DeletionId deletion, qint64 nowMs);
    bool failDeletion(ledger::DeletionId deletion, const QString &reason);
    bool reportDeletions(const QVector<ledger::DeletionId> &deletions, qint64 nowMs);
    bool dismissDeletions(const QVector<ledger::DeletionId> &deletions);

    bool savePending(const ledger::Pending &item, qint64 nowMs);
    bool removePending(ledger::PendingKind kind, const ledger::Desk &desk,
                       const OrderIdentity &order);

    /// Removes the oldest entry that begun before \a beforeMs and has nothing open. \a isMore says
    /// whether there may be another.
    bool removeOldest(qint64 beforeMs, bool *isMore);

private:
    using Rows = QHash<qint64, qint64>;

    qint64 rowOf(const Rows &rows, qint64 id) const { return id > 0 ? id : rows.value(id); }
    /// The row that \a find finds or, when there is none, \a insert makes; 0 when refused.
    qint64 rowFor(const QString &find, std::initializer_list<QVariant> key, const QString &insert,
                  std::initializer_list<QVariant> values);
    qint64 folderRow(const QString &folder);
    qint64 volumeRow(const ledger::Volume &volume);
    qint64 orderRow(const ledger::OrderKey &order);
    qint64 entryRow(qint64 run, const ledger::OrderKey &order, qint64 nowMs);
    bool insertCopy(ledger::CopyId id, qint64 entry, const ledger::NewCopy &copy, qint64 nowMs);
    bool setVolume(qint64 entry, const ledger::Volume &volume);
    bool setForEach(const Rows &rows, const QVector<qint64> &ids, const QString &statement,
                    const QVariant &value);

    LedgerDatabase *database_;
    Rows runs_;
    Rows copies_;
    Rows deletions_;
    QHash<QString, qint64> folders_;
    QHash<QPair<QString, QString>, qint64> volumes_;
};
