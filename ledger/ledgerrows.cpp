#include "ledger/ledgerrows.h"

#include <QDataStream>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>

namespace ledgerrows {

namespace {

/// Takes the values of a row one after the other.
class Values
{
public:
    explicit Values(const QSqlQuery &row) : row_(row) {}

    QVariant next() { return row_.value(place_++); }
    QString text() { return next().toString(); }
    qint64 number() { return next().toLongLong(); }
    int small() { return next().toInt(); }
    /// A size, or what else is -1 when it is not known.
    qint64 size()
    {
        const QVariant value = next();
        return value.isNull() ? -1 : value.toLongLong();
    }
    /// A time that is kept as what has passed since \a begunMs.
    qint64 timeAfter(qint64 begunMs)
    {
        const QVariant value = next();
        return value.isNull() ? 0 : begunMs + value.toLongLong();
    }

private:
    const QSqlQuery &row_;
    int place_ = 0;
};

template <typename Row> void readEntryPart(Values &values, Row &row)
{
    row.entry = values.number();
    row.run = values.number();
    row.work = ledger::Work(values.small());
    row.order.identity.branch = values.text();
    row.order.identity.id = values.text();
    row.order.identity.orderPhotoId = values.text();
    row.order.number = values.text();
    row.order.name = values.text();
}

const QString &entryPart()
{
    static const QString columns =
        QStringLiteral("e.id, e.run, r.work, o.branch, o.order_id, o.photo_id, o.number, o.name");
    return columns;
}

} // namespace

QPair<QString, QString> split(const QString &path)
{
    const int end =
        std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\'))) + 1;
    return {path.left(end), path.mid(end)};
}

QString folded(const QString &path)
{
    QString text = path.toCaseFolded();
    text.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return text;
}

QString foldedFolder(const QString &folder)
{
    QString text = folded(folder);
    if (!text.isEmpty() && !text.endsWith(QLatin1Char('/')))
        text.append(QLatin1Char('/'));
    return text;
}

QByteArray packed(const QVector<ledger::PendingFile> &files)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << quint8(1) << quint32(files.size());
    for (const ledger::PendingFile &file : files) {
        stream << file.path << file.target << file.bytes << file.modifiedMs << file.hash
               << file.note;
    }
    return qCompress(bytes, 1);
}

QVector<ledger::PendingFile> unpackedFiles(const QByteArray &bytes)
{
    const QByteArray plain = qUncompress(bytes);
    QDataStream stream(plain);
    stream.setVersion(QDataStream::Qt_5_15);
    quint8 form = 0;
    quint32 count = 0;
    stream >> form >> count;
    QVector<ledger::PendingFile> files;
    if (form != 1)
        return files;
    for (quint32 number = 0; number < count && stream.status() == QDataStream::Ok; ++number) {
        ledger::PendingFile file;
        stream >> file.path >> file.target >> file.bytes >> file.modifiedMs >> file.hash >>
            file.note;
        files.append(file);
    }
    return stream.status() == QDataStream::Ok ? files : QVector<ledger::PendingFile>();
}

QString copySelection()
{
    return QStringLiteral("SELECT ") + entryPart() +
           QStringLiteral(
               ", r.who, c.id, sf.path, c.name, v.label, v.serial, c.bytes, c.modified, tf.path,"
               " c.target_name, c.target_bytes, c.target_modified, c.kind, c.proof, c.source_hash, c.target_hash,"
               " c.begun, c.finished, c.registration, c.registered, c.failure"
               " FROM copy c JOIN entry e ON e.id = c.entry JOIN run r ON r.id = e.run"
               " JOIN orders o ON o.id = e.orders JOIN folder tf ON tf.id = c.target_folder"
               " LEFT JOIN folder sf ON sf.id = c.folder LEFT JOIN volume v ON v.id = c.volume ");
}

ledger::Copy copyIn(const QSqlQuery &row)
{
    Values values(row);
    ledger::Copy copy;
    readEntryPart(values, copy);
    copy.who = values.text();
    copy.id = values.number();
    const QVariant sourceFolder = values.next();
    const QString name = values.text();
    if (!sourceFolder.isNull())
        copy.source = sourceFolder.toString() + name;
    copy.volume.label = values.text();
    copy.volume.serial = values.text();
    copy.sourceBytes = values.size();
    copy.sourceModifiedMs = values.number();
    const QString targetFolder = values.text();
    const QVariant targetName = values.next();
    copy.target = targetFolder + (targetName.isNull() ? name : targetName.toString());
    const QVariant targetBytes = values.next();
    const QVariant targetModified = values.next();
    copy.kind = ledger::CopyKind(values.small());
    copy.proof = ledger::Proof(values.small());
    copy.sourceHash = values.next().toByteArray();
    const QVariant targetHash = values.next();
    copy.targetHash =
        targetHash.type() == QVariant::LongLong ? copy.sourceHash : targetHash.toByteArray();
    copy.begunMs = values.number();
    copy.finishedMs = values.timeAfter(copy.begunMs);
    copy.registration = ledger::Registration(values.small());
    copy.registeredMs = values.timeAfter(copy.begunMs);
    copy.failure = values.text();
    if (copy.isFinished()) {
        copy.targetBytes = targetBytes.isNull() ? copy.sourceBytes : targetBytes.toLongLong();
        copy.targetModifiedMs =
            targetModified.isNull() ? copy.sourceModifiedMs : targetModified.toLongLong();
    }
    return copy;
}

QString deletionSelection()
{
    return QStringLiteral("SELECT ") + entryPart() +
           QStringLiteral(
               ", d.id, f.path, d.name, d.bytes, d.modified, d.hash, d.photo, d.begun,"
               " d.announced, d.deleted, d.reported, d.dismissed, d.failure"
               " FROM deletion d JOIN entry e ON e.id = d.entry JOIN run r ON r.id = e.run"
               " JOIN orders o ON o.id = e.orders JOIN folder f ON f.id = d.folder ");
}

ledger::Deletion deletionIn(const QSqlQuery &row)
{
    Values values(row);
    ledger::Deletion deletion;
    readEntryPart(values, deletion);
    deletion.id = values.number();
    deletion.file.path = values.text();
    deletion.file.path += values.text();
    deletion.file.bytes = values.size();
    deletion.file.modifiedMs = values.number();
    deletion.file.hash = values.next().toByteArray();
    deletion.file.photo = values.text();
    deletion.begunMs = values.number();
    deletion.announcedMs = values.timeAfter(deletion.begunMs);
    deletion.deletedMs = values.timeAfter(deletion.begunMs);
    deletion.reportedMs = values.timeAfter(deletion.begunMs);
    deletion.dismissed = values.small() != 0;
    deletion.failure = values.text();
    return deletion;
}

QString entrySelection()
{
    return QStringLiteral("SELECT ") + entryPart() +
           QStringLiteral(
               ", r.account, r.branch, r.who, r.begun, r.ended, r.session, r.process, e.begun,"
               " e.chosen, e.finished, e.proved, e.awaited, e.registered, e.failed, e.bytes,"
               " e.deletions, e.deleted"
               " FROM entry e JOIN run r ON r.id = e.run JOIN orders o ON o.id = e.orders ");
}

ledger::Entry entryIn(const QSqlQuery &row)
{
    Values values(row);
    struct
    {
        qint64 entry;
        qint64 run;
        ledger::Work work;
        ledger::OrderKey order;
    } part;
    readEntryPart(values, part);
    ledger::Entry entry;
    entry.id = part.entry;
    entry.order = part.order;
    entry.run.id = part.run;
    entry.run.desk.work = part.work;
    entry.run.desk.account = values.text();
    entry.run.desk.branch = values.text();
    entry.run.who = values.text();
    entry.run.begunMs = values.number();
    entry.run.endedMs = values.timeAfter(entry.run.begunMs);
    entry.run.brokenOff = values.next().isNull() && entry.run.endedMs == 0;
    entry.run.processId = values.number();
    entry.begunMs = values.number();
    entry.chosen = values.small();
    entry.finished = values.small();
    entry.proved = values.small();
    entry.awaited = values.small();
    entry.registered = values.small();
    entry.failed = values.small();
    entry.bytes = values.number();
    entry.deletions = values.small();
    entry.deleted = values.small();
    return entry;
}

QString pendingSelection()
{
    return QStringLiteral(
        "SELECT p.kind, p.account, p.branch, p.work, o.branch, o.order_id, o.photo_id, o.number,"
        " o.name, p.note, p.saved, p.files FROM pending p JOIN orders o ON o.id = p.orders ");
}

ledger::Pending pendingIn(const QSqlQuery &row)
{
    Values values(row);
    ledger::Pending item;
    item.kind = ledger::PendingKind(values.small());
    item.desk.account = values.text();
    item.desk.branch = values.text();
    item.desk.work = ledger::Work(values.small());
    item.order.identity.branch = values.text();
    item.order.identity.id = values.text();
    item.order.identity.orderPhotoId = values.text();
    item.order.number = values.text();
    item.order.name = values.text();
    item.note = values.text();
    item.savedMs = values.number();
    item.files = unpackedFiles(values.next().toByteArray());
    return item;
}

} // namespace ledgerrows
