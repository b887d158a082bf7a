#include "ledger/ledgerwriter.h"

#include "ledger/ledgerdatabase.h"
#include "ledger/ledgerrows.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

/// NULL when there is none, 1 when it is the source's.
QVariant targetHashValue(const ledger::CopyResult &result)
{
    if (result.targetHash.isEmpty())
        return {};
    return result.targetHash == result.sourceHash ? QVariant(1) : QVariant(result.targetHash);
}

QVariant hashValue(const ledger::Hash &hash)
{
    return hash.isEmpty() ? QVariant() : QVariant(hash);
}

/// Never NULL, as a QString that is null would be.
QString text(const QString &said)
{
    return said.isNull() ? QLatin1String("") : said;
}

} // namespace

void LedgerWriter::forgetRows()
{
    folders_.clear();
    volumes_.clear();
}

qint64 LedgerWriter::rowFor(const QString &find, std::initializer_list<QVariant> key,
                            const QString &insert, std::initializer_list<QVariant> values)
{
    const QVariant found = database_->value(find, key);
    if (found.isValid())
        return found.toLongLong();
    return database_->run(insert, values) ? database_->lastId() : 0;
}

qint64 LedgerWriter::folderRow(const QString &folder)
{
    qint64 &row = folders_[folder];
    if (row == 0) {
        row = rowFor(QStringLiteral("SELECT id FROM folder WHERE path = ?"), {text(folder)},
                     QStringLiteral("INSERT INTO folder(path, folded) VALUES(?, ?)"),
                     {text(folder), text(ledgerrows::folded(folder))});
    }
    return row;
}

qint64 LedgerWriter::volumeRow(const ledger::Volume &volume)
{
    qint64 &row = volumes_[{volume.label, volume.serial}];
    if (row == 0) {
        row = rowFor(QStringLiteral("SELECT id FROM volume WHERE label = ? AND serial = ?"),
                     {text(volume.label), text(volume.serial)},
                     QStringLiteral("INSERT INTO volume(label, serial) VALUES(?, ?)"),
                     {text(volume.label), text(volume.serial)});
    }
    return row;
}

/// An order is called as it was called last.
qint64 LedgerWriter::orderRow(const ledger::OrderKey &order)
{
    const OrderIdentity &identity = order.identity;
    const QVariant found = database_->value(
        QStringLiteral("SELECT id FROM orders WHERE branch = ? AND order_id = ? AND photo_id = ?"),
        {text(identity.branch), text(identity.id), text(identity.orderPhotoId)});
    if (found.isValid()) {
        const bool isDone =
            (order.number.isEmpty() && order.name.isEmpty()) ||
            database_->run(QStringLiteral("UPDATE orders SET number = ?, name = ? WHERE id = ?"
                                          " AND (number <> ? OR name <> ?)"),
                           {text(order.number), text(order.name), found, text(order.number),
                            text(order.name)});
        return isDone ? found.toLongLong() : 0;
    }
    const bool isDone =
        database_->run(QStringLiteral("INSERT INTO orders(branch, order_id, photo_id, number, name)"
                                      " VALUES(?, ?, ?, ?, ?)"),
                       {text(identity.branch), text(identity.id), text(identity.orderPhotoId),
                        text(order.number), text(order.name)});
    return isDone ? database_->lastId() : 0;
}

qint64 LedgerWriter::entryRow(qint64 run, const ledger::OrderKey &order, qint64 nowMs)
{
    const qint64 orders = orderRow(order);
    if (orders == 0)
        return 0;
    return rowFor(QStringLiteral("SELECT id FROM entry WHERE run = ? AND orders = ?"),
                  {run, orders},
                  QStringLiteral("INSERT INTO entry(run, orders, begun) VALUES(?, ?, ?)"),
                  {run, orders, nowMs});
}

bool LedgerWriter::beginRun(ledger::RunId id, const ledger::NewRun &run, qint64 nowMs)
{
    const bool isDone = database_->run(
        QStringLiteral("INSERT INTO run(session, account, branch, work, who, process, begun)"
                       " VALUES(?, ?, ?, ?, ?, ?, ?)"),
        {database_->session(), text(run.desk.account), text(run.desk.branch), int(run.desk.work),
         text(run.who), QCoreApplication::applicationPid(), nowMs});
    runs_.insert(id, database_->lastId());
    return isDone;
}

bool LedgerWriter::endRun(ledger::RunId run, qint64 nowMs)
{
    return database_->run(
        QStringLiteral("UPDATE run SET ended = ? - begun, session = NULL WHERE id = ?"),
        {nowMs, rowOf(runs_, run)});
}

bool LedgerWriter::setVolume(qint64 entry, const ledger::Volume &volume)
{
    if (volume.label.isEmpty() && volume.serial.isEmpty())
        return true;
    const qint64 row = volumeRow(volume);
    return row != 0 &&
           database_->run(
               QStringLiteral("INSERT OR IGNORE INTO entry_volume(volume, entry) VALUES(?, ?)"),
               {row, entry});
}

bool LedgerWriter::beginCopies(ledger::CopyId first, ledger::RunId run,
                               const ledger::OrderKey &order,
                               const QVector<ledger::NewCopy> &copies, qint64 nowMs)
{
    const qint64 runRow = rowOf(runs_, run);
    if (runRow == 0)
        return true;
    const qint64 entry = entryRow(runRow, order, nowMs);
    if (entry == 0)
        return false;
    for (int number = 0; number < copies.size(); ++number) {
        const ledger::NewCopy &copy = copies.at(number);
        const ledger::Volume &volume = copy.volume;
        const bool isNew = number == 0 || volume.label != copies.at(number - 1).volume.label ||
                           volume.serial != copies.at(number - 1).volume.serial;
        if ((isNew && !setVolume(entry, volume)) || !insertCopy(first - number, entry, copy, nowMs))
            return false;
    }
    return true;
}

bool LedgerWriter::insertCopy(ledger::CopyId id, qint64 entry, const ledger::NewCopy &copy,
                              qint64 nowMs)
{
    const auto [targetFolder, targetName] = ledgerrows::split(copy.target);
    const qint64 targetRow = folderRow(targetFolder);
    QVariant sourceRow;
    QVariant volume;
    QString name = targetName;
    if (!copy.source.isEmpty()) {
        const auto [sourceFolder, sourceName] = ledgerrows::split(copy.source);
        name = sourceName;
        sourceRow = folderRow(sourceFolder);
        if (!copy.volume.label.isEmpty() || !copy.volume.serial.isEmpty())
            volume = volumeRow(copy.volume);
    }
    const bool isDone =
        targetRow != 0 && sourceRow != 0 && volume != 0 &&
        database_->run(
            QStringLiteral("INSERT INTO copy(entry, name, folder, volume, bytes, modified,"
                           " target_folder, target_name, kind, begun, registration)"
                           " VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
            {entry, text(name), sourceRow, volume, copy.sourceBytes, copy.sourceModifiedMs,
             targetRow, targetName == name ? QVariant() : QVariant(text(targetName)),
             int(copy.kind), nowMs,
             int(copy.toRegister ? ledger::Registration::Awaited
                                 : ledger::Registration::NotWanted)});
    copies_.insert(id, database_->lastId());
    return isDone;
}

bool LedgerWriter::finishCopy(ledger::CopyId copy, const ledger::CopyResult &result, qint64 nowMs)
{
    return database_->run(
        QStringLiteral("UPDATE copy SET finished = ? - begun, proof = ?, source_hash = ?,"
                       " target_hash = ?, target_bytes = nullif(?, bytes),"
                       " target_modified = nullif(?, modified), kind = coalesce(?, kind),"
                       " failure = NULL WHERE id = ?"),
        {nowMs, int(result.proof), hashValue(result.sourceHash), targetHashValue(result),
         result.targetBytes < 0 ? QVariant() : QVariant(result.targetBytes),
         result.targetModifiedMs == 0 ? QVariant() : QVariant(result.targetModifiedMs),
         result.kind ? QVariant(int(*result.kind)) : QVariant(), rowOf(copies_, copy)});
}

bool LedgerWriter::failCopy(ledger::CopyId copy, const QString &reason)
{
    return database_->run(
        QStringLiteral("UPDATE copy SET failure = ? WHERE id = ? AND finished IS NULL"),
        {text(reason), rowOf(copies_, copy)});
}

bool LedgerWriter::proveCopy(ledger::CopyId copy, const ledger::CopyResult &result)
{
    return database_->run(
        QStringLiteral("UPDATE copy SET proof = ?, source_hash = ?, target_hash = ?"
                       " WHERE id = ? AND finished IS NOT NULL"),
        {int(result.proof), hashValue(result.sourceHash), targetHashValue(result),
         rowOf(copies_, copy)});
}

bool LedgerWriter::setForEach(const Rows &rows, const QVector<qint64> &ids,
                              const QString &statement, const QVariant &value)
{
    return std::all_of(ids.cbegin(), ids.cend(), [&](qint64 id) {
        return database_->run(statement, {value, rowOf(rows, id)});
    });
}

bool LedgerWriter::registerCopies(const QVector<ledger::CopyId> &copies, qint64 nowMs)
{
    return setForEach(copies_, copies,
                      QStringLiteral("UPDATE copy SET registration = 2, registered = ? - begun,"
                                     " failure = NULL WHERE id = ?"),
                      nowMs);
}

bool LedgerWriter::refuseCopies(const QVector<ledger::CopyId> &copies, const QString &reason)
{
    return setForEach(copies_, copies, QStringLiteral("UPDATE copy SET failure = ? WHERE id = ?"),
                      text(reason));
}

bool LedgerWriter::dismissUnregistered(const ledger::Desk &desk, const OrderIdentity &order)
{
    return database_->run(
        QStringLiteral(
            "UPDATE copy SET registration = 3 WHERE registration = 1 AND entry IN"
            " (SELECT e.id FROM entry e JOIN run r ON r.id = e.run JOIN orders o ON o.id = e.orders"
            " WHERE e.awaited > 0 AND r.session IS NULL AND r.account = ? AND r.branch = ?"
            " AND r.work = ? AND o.branch = ? AND o.order_id = ? AND o.photo_id = ?)"),
        {text(desk.account), text(desk.branch), int(desk.work), text(order.branch), text(order.id),
         text(order.orderPhotoId)});
}

bool LedgerWriter::beginDeletions(ledger::DeletionId first, ledger::RunId run,
                                  const ledger::OrderKey &order,
                                  const QVector<ledger::NewDeletion> &deletions, qint64 nowMs)
{
    const qint64 runRow = rowOf(runs_, run);
    if (runRow == 0)
        return true;
    const qint64 entry = entryRow(runRow, order, nowMs);
    if (entry == 0)
        return false;
    for (const ledger::NewDeletion &deletion : deletions) {
        const auto [folder, name] = ledgerrows::split(deletion.path);
        const qint64 folderAt = folderRow(folder);
        const bool isDone =
            folderAt != 0 &&
            database_->run(QStringLiteral("INSERT INTO deletion(entry, folder, name, bytes,"
                                          " modified, hash, photo, begun)"
                                          " VALUES(?, ?, ?, ?, ?, ?, ?, ?)"),
                           {entry, folderAt, text(name), deletion.bytes, deletion.modifiedMs,
                            hashValue(deletion.hash), text(deletion.photo), nowMs});
        if (!isDone)
            return false;
        deletions_.insert(first--, database_->lastId());
    }
    return true;
}

bool LedgerWriter::announceDeletions(const QVector<ledger::DeletionId> &deletions, qint64 nowMs)
{
    return setForEach(deletions_, deletions,
                      QStringLiteral("UPDATE deletion SET announced = ? - begun WHERE id = ?"),
                      nowMs);
}

bool LedgerWriter::finishDeletion(ledger::DeletionId deletion, qint64 nowMs)
{
    // A photo that the service has deleted itself is not reported to it.
    return database_->run(
        QStringLiteral("UPDATE deletion SET deleted = ? - begun, failure = NULL, reported ="
                       " CASE (SELECT r.work FROM entry e JOIN run r ON r.id = e.run"
                       " WHERE e.id = deletion.entry) WHEN ? THEN ? - begun ELSE reported END"
                       " WHERE id = ?"),
        {nowMs, int(ledger::Work::PhotoDeletion), nowMs, rowOf(deletions_, deletion)});
}

bool LedgerWriter::failDeletion(ledger::DeletionId deletion, const QString &reason)
{
    return database_->run(QStringLiteral("UPDATE deletion SET failure = ? WHERE id = ?"),
                          {text(reason), rowOf(deletions_, deletion)});
}

bool LedgerWriter::reportDeletions(const QVector<ledger::DeletionId> &deletions, qint64 nowMs)
{
    return setForEach(deletions_, deletions,
                      QStringLiteral("UPDATE deletion SET reported = ? - begun WHERE id = ?"),
                      nowMs);
}

bool LedgerWriter::dismissDeletions(const QVector<ledger::DeletionId> &deletions)
{
    return setForEach(deletions_, deletions,
                      QStringLiteral("UPDATE deletion SET dismissed = ? WHERE id = ?"), 1);
}

bool LedgerWriter::savePending(const ledger::Pending &item, qint64 nowMs)
{
    if (item.files.isEmpty())
        return removePending(item.kind, item.desk, item.order.identity);
    const qint64 orders = orderRow(item.order);
    return orders != 0 &&
           database_->run(
               QStringLiteral("INSERT OR REPLACE INTO pending(kind, account, branch, work, orders,"
                              " saved, note, files) VALUES(?, ?, ?, ?, ?, ?, ?, ?)"),
               {int(item.kind), text(item.desk.account), text(item.desk.branch),
                int(item.desk.work), orders, nowMs, text(item.note),
                ledgerrows::packed(item.files)});
}

bool LedgerWriter::removePending(ledger::PendingKind kind, const ledger::Desk &desk,
                                 const OrderIdentity &order)
{
    return database_->run(
        QStringLiteral("DELETE FROM pending WHERE kind = ? AND account = ? AND branch = ?"
                       " AND work = ? AND orders = (SELECT id FROM orders WHERE branch = ?"
                       " AND order_id = ? AND photo_id = ?)"),
        {int(kind), text(desk.account), text(desk.branch), int(desk.work), text(order.branch),
         text(order.id), text(order.orderPhotoId)});
}

bool LedgerWriter::removeOldest(qint64 beforeMs, bool *isMore)
{
    const QVariant entry = database_->value(
        QStringLiteral("SELECT e.id FROM entry e JOIN run r ON r.id = e.run WHERE e.begun < ?"
                       " AND e.awaited = 0 AND r.session IS NULL AND NOT EXISTS"
                       " (SELECT 1 FROM deletion d WHERE d.entry = e.id AND d.dismissed = 0 AND"
                       " d.announced IS NOT NULL AND (d.deleted IS NULL OR d.reported IS NULL))"
                       // Nobody knows yet what became of these.
                       " AND NOT (r.work = ? AND EXISTS"
                       " (SELECT 1 FROM deletion d WHERE d.entry = e.id AND d.dismissed = 0 AND"
                       " d.announced IS NULL AND d.deleted IS NULL AND"
                       " (d.failure IS NULL OR d.failure = ?)))"
                       " ORDER BY e.begun LIMIT 1"),
        {beforeMs, int(ledger::Work::PhotoDeletion), ledger::unansweredText()});
    *isMore = entry.isValid();
    if (!entry.isValid())
        return true;
    const bool isDone =
        database_->run(QStringLiteral("DELETE FROM copy WHERE entry = ?"), {entry}) &&
        database_->run(QStringLiteral("DELETE FROM deletion WHERE entry = ?"), {entry}) &&
        database_->run(QStringLiteral("DELETE FROM entry_volume WHERE entry = ?"), {entry}) &&
        database_->run(QStringLiteral("DELETE FROM run WHERE id = (SELECT run FROM entry"
                                      " WHERE id = ?) AND NOT EXISTS (SELECT 1 FROM entry e"
                                      " WHERE e.run = run.id AND e.id <> ?)"),
                       {entry, entry}) &&
        database_->run(QStringLiteral("DELETE FROM entry WHERE id = ?"), {entry});
    return isDone;
}
