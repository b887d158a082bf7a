#include "ledger/copydescription.h"

#include "ledger/ledger.h"
#include "platform/volumes.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHash>

ledger::Volume volumeOf(const QString &path)
{
    const platform::VolumeName name = platform::volumeNameOf(path);
    return {name.label, name.serial};
}

ledger::CopyResult resultAt(const QString &target, ledger::CopyKind kind, Proof proof,
                            const ledger::Hash &sourceHash, const ledger::Hash &targetHash,
                            qint64 bytes)
{
    ledger::CopyResult result;
    result.kind = kind;
    result.proof = proof;
    result.sourceHash = sourceHash;
    result.targetHash = targetHash;
    result.targetBytes = bytes;
    result.targetModifiedMs = QFileInfo(target).lastModified().toMSecsSinceEpoch();
    return result;
}

QVector<ledger::CopyId> beginOnDisk(ledger::RunId run, const ledger::OrderKey &order,
                                    QVector<ledger::NewCopy> copies)
{
    QHash<QString, ledger::Volume> volumes; // by folder
    for (ledger::NewCopy &copy : copies) {
        const QFileInfo source(copy.source);
        const QString folder = source.path();
        if (!volumes.contains(folder))
            volumes.insert(folder, volumeOf(folder));
        copy.volume = volumes.value(folder);
        if (!source.exists())
            continue;
        copy.sourceBytes = source.size();
        copy.sourceModifiedMs = source.lastModified().toMSecsSinceEpoch();
    }
    const QVector<ledger::CopyId> ids = Ledger::current().beginCopies(run, order, copies);
    Ledger::current().waitUntilWritten();
    return ids;
}
