#include "marks/run/knowncopies.h"

#include "ledger/copydescription.h"
#include "ledger/ledger.h"
#include "platform/pathform.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHash>

namespace marks {

namespace {

QString nameOf(const QString &path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

/// Whether \a copy is the import of a file itself: what is made of it besides says nothing of it.
bool isImport(const ledger::Copy &copy)
{
    const bool isOfTool = copy.work == ledger::Work::ImportOriginals ||
                          copy.work == ledger::Work::ImportRetouched ||
                          copy.work == ledger::Work::PhotoImport;
    return isOfTool &&
           (copy.kind == ledger::CopyKind::Bytes || copy.kind == ledger::CopyKind::Upright);
}

/// Two cards may hold files of one name, size and time; one card has a serial number of its own.
bool isSameSource(const ledger::Copy &copy, const ChosenFile &file, const ledger::Volume &volume)
{
    return !volume.serial.isEmpty() && volume.serial == copy.volume.serial &&
           platform::toLocalPath(copy.source) == platform::toLocalPath(file.source);
}

} // namespace

QVector<QVector<KnownCopy>> knownCopies(const QVector<ChosenFile> &files)
{
    QVector<ledger::FileStamp> stamps;
    for (const ChosenFile &file : files)
        stamps.append({nameOf(file.source), file.size, file.modified});
    const auto copies = Ledger::current().answer(
        [&stamps](const LedgerReader &reader) { return reader.copiesLike(stamps); });

    QHash<QString, ledger::Volume> volumes; // of folders
    QVector<QVector<KnownCopy>> known(files.size());
    for (int index = 0; index < files.size() && index < copies.size(); ++index) {
        for (const ledger::Copy &copy : copies.at(index)) {
            if (!isImport(copy))
                continue;
            const QString folder = QFileInfo(files.at(index).source).path();
            if (!volumes.contains(folder))
                volumes.insert(folder, volumeOf(folder));
            KnownCopy one;
            one.order = copy.order.identity;
            one.orderNumber = copy.order.number;
            one.day = QDateTime::fromMSecsSinceEpoch(copy.finishedMs).date();
            one.isSameSource = isSameSource(copy, files.at(index), volumes.value(folder));
            one.isUpright = copy.kind == ledger::CopyKind::Upright;
            one.sourceHash = copy.sourceHash;
            one.targetHash = copy.targetHash;
            one.target = copy.target;
            known[index].append(one);
        }
    }
    return known;
}

} // namespace marks
