#include "pending/photodeletionrecording.h"

#include "files/paths.h"
#include "ledger/ledger.h"
#include "pending/pendingdesk.h"

#include <QSet>

#include <utility>

namespace {

QString wireForm(QString path)
{
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}

/// Of a file that the ledger does not know, or not to its end, no more than where it lies.
ledger::NewDeletion deletionOf(const PhotoDeletionRecording::Photo &photo, const ledger::Copy &copy)
{
    ledger::NewDeletion deletion;
    deletion.path = wireForm(photo.path);
    deletion.photo = photo.id;
    if (!photo.hash.isEmpty()) {
        deletion.bytes = photo.bytes;
        deletion.modifiedMs = photo.modifiedMs;
        deletion.hash = photo.hash;
    } else if (copy.isFinished()) {
        deletion.bytes = copy.targetBytes;
        deletion.modifiedMs = copy.targetModifiedMs;
        deletion.hash = copy.targetHash;
    }
    return deletion;
}

} // namespace

PhotoDeletionRecording::PhotoDeletionRecording(QObject *parent) : QObject(parent)
{
}

PhotoDeletionRecording::~PhotoDeletionRecording()
{
    end();
}

void PhotoDeletionRecording::begin(const ledger::OrderKey &order, const QVector<Photo> &photos,
                                   std::function<void()> begun)
{
    end();
    QVector<Photo> placed;
    QStringList paths;
    for (const Photo &photo : photos) {
        if (photo.path.isEmpty())
            continue;
        placed.append(photo);
        paths.append(wireForm(photo.path));
    }
    Ledger::current().ask(
        this, [paths](const LedgerReader &reader) { return reader.copiesOnto(paths); },
        beginning_.only(
            [this, order, placed, begun = std::move(begun)](const QVector<ledger::Copy> &copies) {
                enter(order, placed, copies);
                Ledger::current().whenWritten(this, beginning_.only([begun](bool) { begun(); }));
            }));
}

void PhotoDeletionRecording::enter(const ledger::OrderKey &order, const QVector<Photo> &photos,
                                   const QVector<ledger::Copy> &copies)
{
    if (photos.isEmpty())
        return;
    const ledger::Desk desk = pendingDesk(ledger::Work::PhotoDeletion, order.identity.branch);
    QVector<ledger::NewDeletion> deletions;
    for (int index = 0; index < photos.size(); ++index)
        deletions.append(deletionOf(photos.at(index), copies.at(index)));
    run_ = Ledger::current().beginRun({desk, desk.account});
    const auto ids = Ledger::current().beginDeletions(run_, order, deletions);
    for (int index = 0; index < ids.size(); ++index)
        rows_.insert(wirePathKey(deletions.at(index).path), ids.at(index));
}

void PhotoDeletionRecording::announced()
{
    QVector<ledger::DeletionId> rows;
    for (const ledger::DeletionId row : qAsConst(rows_))
        rows.append(row);
    Ledger::current().announceDeletions(rows);
}

void PhotoDeletionRecording::refused(const QString &reason)
{
    for (const ledger::DeletionId row : qAsConst(rows_))
        Ledger::current().failDeletion(row, reason);
}

void PhotoDeletionRecording::gone(const QString &path)
{
    Ledger::current().finishDeletion(rows_.value(wirePathKey(path)));
}

void PhotoDeletionRecording::failed(const QString &path, const QString &reason)
{
    Ledger::current().failDeletion(rows_.value(wirePathKey(path)), reason);
}

void PhotoDeletionRecording::end()
{
    beginning_.abandon();
    rows_.clear();
    if (run_ != 0)
        Ledger::current().endRun(std::exchange(run_, 0));
}

void PhotoDeletionRecording::announceForgotten(const OrderIdentity &order,
                                               const QStringList &photos)
{
    Ledger::current().ask(
        &Ledger::current(),
        [order, photos](const LedgerReader &reader) {
            QVector<ledger::DeletionId> forgotten;
            QSet<QString> known;
            const auto deletions = reader.deletionsOfOrder(order); // newest first
            for (const ledger::Deletion &deletion : deletions) {
                const QString &photo = deletion.file.photo;
                if (deletion.work != ledger::Work::PhotoDeletion || !photos.contains(photo) ||
                    known.contains(photo))
                    continue;
                known.insert(photo);
                if (deletion.announcedMs == 0)
                    forgotten.append(deletion.id);
            }
            return forgotten;
        },
        [](const QVector<ledger::DeletionId> &forgotten) {
            Ledger::current().announceDeletions(forgotten);
        });
}
