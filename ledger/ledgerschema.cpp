#include "ledger/ledgerschema.h"

namespace ledgerschema {

namespace {

/// Numbers instead of texts, NULL for what is not yet, and times after the beginning as what has
/// passed since: all for the sake of size. A target's name, size or hash that is the source's is
/// not written twice: NULL for name and size, the number 1 for the hash.
QStringList firstTables()
{
    return {
        // Programs that run now, by the lock that each holds.
        QStringLiteral("CREATE TABLE session(id INTEGER PRIMARY KEY AUTOINCREMENT,"
                       " lock TEXT NOT NULL)"),
        QStringLiteral("CREATE TABLE volume(id INTEGER PRIMARY KEY, label TEXT NOT NULL,"
                       " serial TEXT NOT NULL, UNIQUE(label, serial))"),
        // Paths end with their separator.
        QStringLiteral("CREATE TABLE folder(id INTEGER PRIMARY KEY, path TEXT NOT NULL UNIQUE,"
                       " folded TEXT NOT NULL)"),
        QStringLiteral("CREATE INDEX folder_folded ON folder(folded)"),
        QStringLiteral("CREATE TABLE orders(id INTEGER PRIMARY KEY, branch TEXT NOT NULL,"
                       " order_id TEXT NOT NULL, photo_id TEXT NOT NULL, number TEXT NOT NULL,"
                       " name TEXT NOT NULL, UNIQUE(branch, order_id, photo_id))"),
        QStringLiteral("CREATE TABLE run(id INTEGER PRIMARY KEY AUTOINCREMENT, session INTEGER,"
                       " account TEXT NOT NULL, branch TEXT NOT NULL, work INTEGER NOT NULL,"
                       " who TEXT NOT NULL, process INTEGER NOT NULL, begun INTEGER NOT NULL,"
                       " ended INTEGER)"),
        QStringLiteral("CREATE INDEX run_session ON run(session) WHERE session IS NOT NULL"),
        QStringLiteral("CREATE TABLE entry(id INTEGER PRIMARY KEY AUTOINCREMENT,"
                       " run INTEGER NOT NULL, orders INTEGER NOT NULL, begun INTEGER NOT NULL,"
                       " chosen INTEGER NOT NULL DEFAULT 0, finished INTEGER NOT NULL DEFAULT 0,"
                       " proved INTEGER NOT NULL DEFAULT 0, awaited INTEGER NOT NULL DEFAULT 0,"
                       " registered INTEGER NOT NULL DEFAULT 0, failed INTEGER NOT NULL DEFAULT 0,"
                       " bytes INTEGER NOT NULL DEFAULT 0, deletions INTEGER NOT NULL DEFAULT 0,"
                       " deleted INTEGER NOT NULL DEFAULT 0, UNIQUE(run, orders))"),
        QStringLiteral("CREATE INDEX entry_orders ON entry(orders)"),
        QStringLiteral("CREATE INDEX entry_begun ON entry(begun)"),
        QStringLiteral("CREATE INDEX entry_awaited ON entry(awaited) WHERE awaited > 0"),
        QStringLiteral("CREATE TABLE entry_volume(volume INTEGER NOT NULL, entry INTEGER NOT NULL,"
                       " PRIMARY KEY(volume, entry)) WITHOUT ROWID"),
        QStringLiteral("CREATE INDEX entry_volume_entry ON entry_volume(entry)"),
        QStringLiteral("CREATE TABLE copy(id INTEGER PRIMARY KEY AUTOINCREMENT,"
                       " entry INTEGER NOT NULL, name TEXT NOT NULL, folder INTEGER,"
                       " volume INTEGER, bytes INTEGER NOT NULL, modified INTEGER NOT NULL,"
                       " target_folder INTEGER NOT NULL, target_name TEXT, target_bytes INTEGER,"
                       " target_modified INTEGER,"
                       " kind INTEGER NOT NULL, proof INTEGER NOT NULL DEFAULT 0,"
                       " source_hash BLOB, target_hash BLOB, begun INTEGER NOT NULL,"
                       " finished INTEGER, registration INTEGER NOT NULL, registered INTEGER,"
                       " failure TEXT)"),
        QStringLiteral("CREATE INDEX copy_stamp ON copy(bytes, modified)"),
        QStringLiteral("CREATE INDEX copy_hash ON copy(source_hash) WHERE source_hash NOT NULL"),
        QStringLiteral("CREATE INDEX copy_target ON copy(target_folder)"),
        QStringLiteral("CREATE INDEX copy_entry ON copy(entry, name COLLATE NOCASE)"),
        QStringLiteral("CREATE INDEX copy_awaited ON copy(entry)"
                       " WHERE registration = 1 AND finished IS NOT NULL"),
        QStringLiteral("CREATE TABLE deletion(id INTEGER PRIMARY KEY AUTOINCREMENT,"
                       " entry INTEGER NOT NULL, folder INTEGER NOT NULL, name TEXT NOT NULL,"
                       " bytes INTEGER NOT NULL, modified INTEGER NOT NULL, hash BLOB, photo TEXT,"
                       " begun INTEGER NOT NULL, announced INTEGER, deleted INTEGER,"
                       " reported INTEGER, dismissed INTEGER NOT NULL DEFAULT 0, failure TEXT)"),
        QStringLiteral("CREATE INDEX deletion_entry ON deletion(entry, name COLLATE NOCASE)"),
        QStringLiteral("CREATE INDEX deletion_open ON deletion(entry) WHERE dismissed = 0"
                       " AND announced IS NOT NULL AND (deleted IS NULL OR reported IS NULL)"),
        QStringLiteral("CREATE TABLE pending(id INTEGER PRIMARY KEY AUTOINCREMENT,"
                       " kind INTEGER NOT NULL, account TEXT NOT NULL, branch TEXT NOT NULL,"
                       " work INTEGER NOT NULL, orders INTEGER NOT NULL, saved INTEGER NOT NULL,"
                       " note TEXT NOT NULL, files BLOB NOT NULL,"
                       " UNIQUE(account, branch, work, kind, orders))"),
    };
}

/// The counts of an entry follow its files, whoever changes them.
QStringList firstTriggers()
{
    return {
        QStringLiteral("CREATE TRIGGER copy_begun AFTER INSERT ON copy BEGIN"
                       " UPDATE entry SET chosen = chosen + 1 WHERE id = new.entry; END"),
        QStringLiteral(
            "CREATE TRIGGER copy_changed"
            " AFTER UPDATE OF finished, proof, registration, failure ON copy BEGIN"
            " UPDATE entry SET"
            " finished = finished + (new.finished IS NOT NULL) - (old.finished IS NOT NULL),"
            " proved = proved + (new.finished IS NOT NULL AND new.proof > 1)"
            " - (old.finished IS NOT NULL AND old.proof > 1),"
            " awaited = awaited + (new.finished IS NOT NULL AND new.registration = 1)"
            " - (old.finished IS NOT NULL AND old.registration = 1),"
            " registered = registered + (new.registration = 2) - (old.registration = 2),"
            " failed = failed + (new.finished IS NULL AND new.failure IS NOT NULL)"
            " - (old.finished IS NULL AND old.failure IS NOT NULL),"
            " bytes = bytes + (new.finished IS NOT NULL) * max(new.bytes, 0)"
            " - (old.finished IS NOT NULL) * max(old.bytes, 0)"
            " WHERE id = new.entry; END"),
        QStringLiteral("CREATE TRIGGER deletion_begun AFTER INSERT ON deletion BEGIN"
                       " UPDATE entry SET deletions = deletions + 1 WHERE id = new.entry; END"),
        QStringLiteral("CREATE TRIGGER deletion_changed AFTER UPDATE OF deleted ON deletion BEGIN"
                       " UPDATE entry SET deleted = deleted + (new.deleted IS NOT NULL)"
                       " - (old.deleted IS NOT NULL) WHERE id = new.entry; END"),
    };
}

/// Deletions without an answer are asked for whenever a tool is opened.
QStringList unansweredIndex()
{
    return {QStringLiteral("CREATE INDEX deletion_unanswered ON deletion(entry) WHERE dismissed = 0"
                           " AND announced IS NULL AND deleted IS NULL")};
}

} // namespace

const QVector<QStringList> &steps()
{
    static const QVector<QStringList> all{firstTables() + firstTriggers(), unansweredIndex()};
    return all;
}

int version()
{
    return steps().size();
}

} // namespace ledgerschema
