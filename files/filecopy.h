#pragma once

#include "platform/filetransfer.h"

#include <QString>

/// How copying one file ended.
enum class CopyOutcome {
    Copied,        ///< the target holds the whole source, on the medium
    Cancelled,     ///< on request
    Failed,        ///< could not be read, written or renamed; the disk may be full
    Empty,         ///< the copy had 0 bytes
    SizeDiffers,   ///< the copy is not as large as the source is now
    SourceChanged, ///< the source was written to, its size kept, while it was copied
};

/// Copies \a source onto \a target, replacing a file that stands there: the one way in which this
/// program copies a file anywhere.
///
/// The bytes go into a temporary name in the target's folder, are flushed to the medium, checked
/// and looked at for a last cancellation, and only then renamed: after that nothing is taken back.
/// So the target name never holds a partial file, and unless the outcome is Copied an earlier file
/// under that name is untouched and nothing is left behind. Keeps the time of modification and
/// drops a read-only mark. Blocks; for worker threads.
CopyOutcome copyFile(const QString &source, const QString &target,
                     const platform::TransferControl &control = {});

/// What to tell the user of a copy that ended with \a outcome; nothing of one that is there or was
/// cancelled. Looks at the disks for what is in the way now. Blocks; for worker threads.
QString copyProblem(CopyOutcome outcome, const QString &source, const QString &target);
