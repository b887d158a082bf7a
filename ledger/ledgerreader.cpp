#include "ledger/ledgerreader.h"

#include "app/context/logging.h"
#include "ledger/ledgerhistory.h"
#include "ledger/ledgerrows.h"

#include <QFileInfo>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>

namespace {

/// Ends a text that begins with whatever: no character comes after it.
const QString &lastCharacter()
{
    static const QString text = QString(QChar(0xdbff)) + QChar(0xdfff);
    return text;
}

QSqlQuery prepared(const QSqlDatabase &database, const QString &statement)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.prepare(statement))
        qCWarning(lcTessavo) << "ledger:" << query.lastError().text();
    return query;
}

bool executed(QSqlQuery &query, const QVariantList &values)
{
    int place = 0;
    for (const QVariant &value : values)
        query.bindValue(place++, value);
    if (query.exec())
        return true;
    qCWarning(lcTessavo) << "ledger:" << query.lastError().text();
    return false;
}

template <typename Row>
QVector<Row> rows(QSqlQuery &query, const QVariantList &values, Row (*rowIn)(const QSqlQuery &))
{
    QVector<Row> found;
    if (executed(query, values)) {
        while (query.next())
            found.append(rowIn(query));
    }
    query.finish();
    return found;
}

QString numbers(const QVector<ledger::Work> &works)
{
    QStringList texts;
    for (const ledger::Work work : works)
        texts.append(QString::number(int(work)));
    return texts.join(QLatin1Char(','));
}

/// Of several rows for one target the first, which is the newest.
QVector<ledger::Copy> firstOfEachTarget(const QVector<ledger::Copy> &copies)
{
    QSet<QString> seen;
    QVector<ledger::Copy> first;
    for (const ledger::Copy &copy : copies) {
        const QString target = ledgerrows::folded(copy.target);
        if (!seen.contains(target)) {
            seen.insert(target);
            first.append(copy);
        }
    }
    return first;
}

/// One that failed has left what was there.
const QString &mayHaveWritten()
{
    static const QString condition =
        QStringLiteral(" AND (c.finished IS NOT NULL OR c.failure IS NULL)");
    return condition;
}

/// Null in what is compared would match nothing.
QString text(const QString &said)
{
    return said.isNull() ? QLatin1String("") : said;
}

/// What tells the desk in the table \a table, and its values.
QString atDesk(const ledger::Desk &desk, QLatin1Char table)
{
    QString condition = QStringLiteral("%1.account = ?").arg(table);
    if (!desk.branch.isEmpty())
        condition += QStringLiteral(" AND %1.branch = ?").arg(table);
    if (desk.work != ledger::Work::Unknown)
        condition += QStringLiteral(" AND %1.work = ?").arg(table);
    return condition;
}

QVariantList valuesOf(const ledger::Desk &desk)
{
    QVariantList values{text(desk.account)};
    if (!desk.branch.isEmpty())
        values.append(desk.branch);
    if (desk.work != ledger::Work::Unknown)
        values.append(int(desk.work));
    return values;
}

} // namespace

bool LedgerReader::isOpen() const
{
    return database_ && database_->isOpen();
}

QVector<QVector<ledger::Copy>>
LedgerReader::copiesLike(const QVector<ledger::FileStamp> &stamps) const
{
    QVector<QVector<ledger::Copy>> found(stamps.size());
    if (!isOpen())
        return found;
    QSqlQuery query = prepared(*database_, ledgerrows::copySelection() +
                                               QStringLiteral("WHERE c.bytes = ? AND c.modified = ?"
                                                              " AND c.finished IS NOT NULL"
                                                              " ORDER BY c.id DESC"));
    for (int number = 0; number < stamps.size(); ++number) {
        const ledger::FileStamp &stamp = stamps.at(number);
        const QVector<ledger::Copy> all =
            rows(query, {stamp.bytes, stamp.modifiedMs}, ledgerrows::copyIn);
        for (const ledger::Copy &copy : all) {
            const QString name = ledgerrows::split(copy.source).second;
            if (name.compare(stamp.name, Qt::CaseInsensitive) == 0)
                found[number].append(copy);
        }
    }
    return found;
}

QVector<QVector<ledger::Copy>>
LedgerReader::copiesOf(const QVector<ledger::Hash> &sourceHashes) const
{
    QVector<QVector<ledger::Copy>> found(sourceHashes.size());
    if (!isOpen())
        return found;
    QSqlQuery query =
        prepared(*database_, ledgerrows::copySelection() +
                                 QStringLiteral("WHERE c.source_hash = ? AND c.finished IS NOT NULL"
                                                " ORDER BY c.id DESC"));
    for (int number = 0; number < sourceHashes.size(); ++number) {
        if (!sourceHashes.at(number).isEmpty())
            found[number] = rows(query, {sourceHashes.at(number)}, ledgerrows::copyIn);
    }
    return found;
}

QVector<ledger::Copy> LedgerReader::copiesInto(const QString &target) const
{
    if (!isOpen())
        return {};
    QSqlQuery query =
        prepared(*database_, ledgerrows::copySelection() +
                                 QStringLiteral("WHERE c.target_folder IN"
                                                " (SELECT id FROM folder WHERE folded = ?)") +
                                 mayHaveWritten() + QStringLiteral(" ORDER BY c.id DESC"));
    return firstOfEachTarget(rows(query, {ledgerrows::foldedFolder(target)}, ledgerrows::copyIn));
}

QVector<ledger::Copy> LedgerReader::copiesBelow(const QString &target,
                                                const QVector<ledger::Work> &works) const
{
    const QString start = ledgerrows::foldedFolder(target);
    if (!isOpen() || start.isEmpty())
        return {};
    QString statement = ledgerrows::copySelection() +
                        QStringLiteral("WHERE c.target_folder IN (SELECT id FROM folder"
                                       " WHERE folded >= ? AND folded < ?)") +
                        mayHaveWritten();
    if (!works.isEmpty())
        statement += QStringLiteral(" AND r.work IN (%1)").arg(numbers(works));
    QSqlQuery query = prepared(*database_, statement + QStringLiteral(" ORDER BY c.id DESC"));
    return firstOfEachTarget(rows(query, {start, start + lastCharacter()}, ledgerrows::copyIn));
}

QVector<ledger::Copy> LedgerReader::copiesOnto(const QStringList &targets) const
{
    QHash<QString, QHash<QString, ledger::Copy>> folders;
    QVector<ledger::Copy> found;
    for (const QString &target : targets) {
        const QString folder = ledgerrows::foldedFolder(ledgerrows::split(target).first);
        if (!folders.contains(folder)) {
            QHash<QString, ledger::Copy> &copies = folders[folder];
            const QVector<ledger::Copy> all = copiesInto(folder);
            for (const ledger::Copy &copy : all)
                copies.insert(ledgerrows::folded(copy.target), copy);
        }
        found.append(folders.value(folder).value(ledgerrows::folded(target)));
    }
    return found;
}

QVector<ledger::Copy> LedgerReader::awaitedOnto(const QStringList &targets) const
{
    if (!isOpen())
        return {};
    QHash<QString, QSet<QString>> folders;
    for (const QString &target : targets)
        folders[ledgerrows::foldedFolder(ledgerrows::split(target).first)].insert(
            ledgerrows::folded(target));
    QSqlQuery query =
        prepared(*database_, ledgerrows::copySelection() +
                                 QStringLiteral("WHERE c.target_folder IN"
                                                " (SELECT id FROM folder WHERE folded = ?)"
                                                " AND c.registration = 1"
                                                " AND c.finished IS NOT NULL"));
    QVector<ledger::Copy> found;
    for (auto folder = folders.cbegin(); folder != folders.cend(); ++folder) {
        const QVector<ledger::Copy> awaited = rows(query, {folder.key()}, ledgerrows::copyIn);
        std::copy_if(awaited.cbegin(), awaited.cend(), std::back_inserter(found),
                     [&folder](const ledger::Copy &copy) {
                         return folder->contains(ledgerrows::folded(copy.target));
                     });
    }
    return found;
}

QVector<ledger::Copy> LedgerReader::copiesOfOrder(const OrderIdentity &order,
                                                  const QVector<ledger::Work> &works) const
{
    if (!isOpen())
        return {};
    QString statement = ledgerrows::copySelection() +
                        QStringLiteral("WHERE c.entry IN (SELECT e.id FROM entry e JOIN orders o"
                                       " ON o.id = e.orders WHERE o.branch = ? AND o.order_id = ?"
                                       " AND o.photo_id = ?)");
    if (!works.isEmpty())
        statement += QStringLiteral(" AND r.work IN (%1)").arg(numbers(works));
    QSqlQuery query = prepared(*database_, statement + QStringLiteral(" ORDER BY c.id DESC"));
    return rows(query, {text(order.branch), text(order.id), text(order.orderPhotoId)},
                ledgerrows::copyIn);
}

QVector<ledger::Deletion> LedgerReader::deletionsOfOrder(const OrderIdentity &order) const
{
    if (!isOpen())
        return {};
    QSqlQuery query =
        prepared(*database_, ledgerrows::deletionSelection() +
                                 QStringLiteral("WHERE o.branch = ? AND o.order_id = ?"
                                                " AND o.photo_id = ? ORDER BY d.id DESC"));
    return rows(query, {text(order.branch), text(order.id), text(order.orderPhotoId)},
                ledgerrows::deletionIn);
}

QVector<ledger::Entry> LedgerReader::underWayElsewhere(const OrderIdentity &order,
                                                       qint64 session) const
{
    if (!isOpen())
        return {};
    QSqlQuery query = prepared(
        *database_, ledgerrows::entrySelection() +
                        QStringLiteral("WHERE o.branch = ? AND o.order_id = ? AND o.photo_id = ?"
                                       " AND r.session IS NOT NULL AND r.session <> ?"
                                       " AND r.ended IS NULL ORDER BY e.id DESC"));
    return rows(query, {text(order.branch), text(order.id), text(order.orderPhotoId), session},
                ledgerrows::entryIn);
}

QVector<ledger::Entry> LedgerReader::unregistered(const ledger::Desk &desk) const
{
    if (!isOpen())
        return {};
    QSqlQuery query =
        prepared(*database_, ledgerrows::entrySelection() +
                                 QStringLiteral("WHERE e.awaited > 0 AND r.session IS NULL AND %1"
                                                " ORDER BY e.id DESC")
                                     .arg(atDesk(desk, QLatin1Char('r'))));
    return withVolumes(rows(query, valuesOf(desk), ledgerrows::entryIn));
}

QVector<ledger::Deletion> LedgerReader::openDeletions(const ledger::Desk &desk) const
{
    if (!isOpen())
        return {};
    QSqlQuery query =
        prepared(*database_, ledgerrows::deletionSelection() +
                                 QStringLiteral("WHERE d.dismissed = 0 AND d.announced IS NOT NULL"
                                                " AND (d.deleted IS NULL OR d.reported IS NULL)"
                                                " AND r.session IS NULL AND %1 ORDER BY d.id")
                                     .arg(atDesk(desk, QLatin1Char('r'))));
    return rows(query, valuesOf(desk), ledgerrows::deletionIn);
}

QVector<ledger::Deletion> LedgerReader::unansweredDeletions(const ledger::Desk &desk) const
{
    if (!isOpen())
        return {};
    QSqlQuery query =
        prepared(*database_, ledgerrows::deletionSelection() +
                                 QStringLiteral("WHERE d.dismissed = 0 AND d.announced IS NULL"
                                                " AND d.deleted IS NULL"
                                                " AND (d.failure IS NULL OR d.failure = ?)"
                                                " AND r.session IS NULL AND %1 ORDER BY d.id")
                                     .arg(atDesk(desk, QLatin1Char('r'))));
    return rows(query, QVariantList{ledger::unansweredText()} + valuesOf(desk),
                ledgerrows::deletionIn);
}

QVector<ledger::Pending> LedgerReader::pending(const ledger::Desk &desk) const
{
    if (!isOpen())
        return {};
    QSqlQuery query = prepared(
        *database_,
        ledgerrows::pendingSelection() +
            QStringLiteral("WHERE %1 ORDER BY p.id DESC").arg(atDesk(desk, QLatin1Char('p'))));
    QVector<ledger::Pending> items = rows(query, valuesOf(desk), ledgerrows::pendingIn);
    items.erase(std::remove_if(items.begin(), items.end(),
                               [](const ledger::Pending &item) { return item.files.isEmpty(); }),
                items.end());
    return items;
}

QVector<ledger::Entry> LedgerReader::entriesOf(ledger::RunId run) const
{
    if (!isOpen())
        return {};
    QSqlQuery query = prepared(*database_, ledgerrows::entrySelection() +
                                               QStringLiteral("WHERE e.run = ? ORDER BY e.id"));
    return withVolumes(rows(query, {run}, ledgerrows::entryIn));
}

QVector<ledger::Copy> LedgerReader::copiesOfEntry(ledger::EntryId entry, ledger::CopyId after,
                                                  int most) const
{
    if (!isOpen())
        return {};
    QSqlQuery query =
        prepared(*database_, ledgerrows::copySelection() +
                                 QStringLiteral("WHERE c.entry = ? AND c.id > ? ORDER BY c.id"
                                                " LIMIT ?"));
    return rows(query, {entry, after, most}, ledgerrows::copyIn);
}

QVector<ledger::Deletion> LedgerReader::deletionsOfEntry(ledger::EntryId entry) const
{
    if (!isOpen())
        return {};
    QSqlQuery query = prepared(*database_, ledgerrows::deletionSelection() +
                                               QStringLiteral("WHERE d.entry = ? ORDER BY d.id"));
    return rows(query, {entry}, ledgerrows::deletionIn);
}

QVector<ledger::Entry> LedgerReader::withVolumes(QVector<ledger::Entry> entries) const
{
    QSqlQuery query = prepared(*database_, QStringLiteral("SELECT v.label, v.serial"
                                                          " FROM entry_volume ev JOIN volume v"
                                                          " ON v.id = ev.volume"
                                                          " WHERE ev.entry = ?"));
    for (ledger::Entry &entry : entries) {
        executed(query, {entry.id});
        while (query.next())
            entry.volumes.append({query.value(0).toString(), query.value(1).toString()});
    }
    return entries;
}

ledger::HistoryPage LedgerReader::history(const ledger::HistorySearch &search) const
{
    if (!isOpen())
        return {};
    const ledgerhistory::Selection selection = ledgerhistory::selectionFor(search);
    QSqlQuery query = prepared(*database_, selection.statement);
    for (int place = 0; place < selection.values.size(); ++place)
        query.bindValue(place, selection.values.at(place));
    ledger::HistoryPage page;
    executed(query, {});
    while (query.next())
        page.entries.append(ledgerrows::entryIn(query));
    page.hasMore = page.entries.size() > search.most;
    if (page.hasMore)
        page.entries.removeLast();
    page.entries = withVolumes(std::move(page.entries));
    return page;
}

ledger::Extent LedgerReader::extent() const
{
    ledger::Extent extent;
    if (!isOpen())
        return extent;
    extent.fileBytes = QFileInfo(database_->databaseName()).size();
    QSqlQuery query(QStringLiteral("SELECT (SELECT count(*) FROM copy),"
                                   " (SELECT count(*) FROM deletion),"
                                   " (SELECT min(begun) FROM entry)"),
                    *database_);
    if (query.next()) {
        extent.copies = query.value(0).toLongLong();
        extent.deletions = query.value(1).toLongLong();
        extent.oldestMs = query.value(2).toLongLong();
    }
    return extent;
}
