#pragma once

#include "files/proof.h"
#include "platform/filetransfer.h"

#include <QByteArray>
#include <QString>

/// How copying one file ended.
enum class CopyOutcome {
    Copied,         ///< the target holds the whole source, on the medium
    Cancelled,      ///< on request
    Failed,         ///< could not be read, written or renamed; the disk may be full
    Empty,          ///< the copy had 0 bytes
    SizeDiffers,    ///< the copy is not as large as the source is now
    SourceChanged,  ///< the source was written to, its size kept, or replaced while it was copied
    ContentDiffers, ///< what was read back is not what was read of the source
};

/// How a copy is looked at before it gets its name.
enum class Verification {
    ReadBack, ///< its bytes are read back and compared
    Size,     ///< its size is
};

/// What is known of a copy that was made.
struct VerifiedCopy
{
    CopyOutcome outcome = CopyOutcome::Failed;
    // Of a file that was copied only:
    Proof proof = Proof::None;
    QByteArray hash; ///< of source and target alike, see ContentHash; empty unless read back
    qint64 bytes = 0;
};

/// Copies \a source onto \a target, replacing a file that stands there: the one way in which this
/// program copies a file anywhere.
///
/// The bytes go into a temporary name in the target's folder, are flushed to the medium, checked as
/// \a verification says and looked at for a last cancellation, and only then renamed: after that
/// nothing is taken back. So the target name never holds a partial file, and unless the outcome is
/// Copied an earlier file under that name is untouched and nothing is left behind. Keeps the time
/// of modification and drops a read-only mark. A copy that is read back tells half of its bytes as
/// progress when they are written, the other half when they are read. Blocks; for worker threads.
VerifiedCopy copyVerified(const QString &source, const QString &target, Verification verification,
                          const platform::TransferControl &control = {});

/// The same by the system's fastest way, looked at for its size.
CopyOutcome copyFile(const QString &source, const QString &target,
                     const platform::TransferControl &control = {});

/// What to tell the user of a copy that ended with \a outcome; nothing of one that is there or was
/// cancelled. Looks at the disks for what is in the way now. Blocks; for worker threads.
QString copyProblem(CopyOutcome outcome, const QString &source, const QString &target);
