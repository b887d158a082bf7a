#pragma once

#include "marks/rules/filemark.h"

#include <QVector>

namespace marks {

/// What the ledger tells of earlier imports of files with the names, sizes and times of \a files;
/// for each file, the newest first. Empty when there is no ledger. Asks the disks what the sources
/// lie on. Blocks; for worker threads.
QVector<QVector<KnownCopy>> knownCopies(const QVector<ChosenFile> &files);

} // namespace marks
