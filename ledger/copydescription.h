#pragma once

#include "files/proof.h"
#include "ledger/ledgerrecords.h"

#include <QString>
#include <QVector>

/// The card, drive or share that the file or folder \a path (this machine's form) lies on. Blocks;
/// for worker threads.
ledger::Volume volumeOf(const QString &path);

/// How the copy came about that stands at \a target (this machine's form) now, of \a bytes with
/// those hashes. Blocks; for worker threads.
ledger::CopyResult resultAt(const QString &target, ledger::CopyKind kind, Proof proof,
                            const ledger::Hash &sourceHash, const ledger::Hash &targetHash,
                            qint64 bytes);

/// Looks at the sources of \a copies, notes for the current ledger that they are going to be made,
/// and returns one id for each when that is on the disk, or cannot be brought there. Blocks; for
/// worker threads.
QVector<ledger::CopyId> beginOnDisk(ledger::RunId run, const ledger::OrderKey &order,
                                    QVector<ledger::NewCopy> copies);
