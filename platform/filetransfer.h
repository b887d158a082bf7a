#pragma once

#include <QString>

#include <functional>

namespace platform {

/// What a transfer asks and tells while it runs; both members may be empty. They are called on the
/// thread that copies, every few megabytes.
struct TransferControl
{
    std::function<bool()> cancelled;
    std::function<void(qint64 bytesCopied)> progress;
};

enum class TransferResult {
    Done,
    Cancelled,
    Failed,
    SourceChanged, ///< written to while it was read: what was copied may be a mix
};

/// Copies the bytes of \a source into \a target, which must not exist yet, by the system's fastest
/// way, keeps the time of modification, drops a read-only mark and returns only when the bytes are
/// on the medium. The source's size and time of modification are looked at before and after while
/// it is open; a change within one step of its clock shows in neither. A target that was begun is
/// left behind unless the result is Done: removing it is the caller's. Blocks; for worker threads.
TransferResult transferFile(const QString &source, const QString &target,
                            const TransferControl &control);

/// Brings what was written to \a path onto the medium. Blocks; for worker threads.
bool flushToMedium(const QString &path);

/// Renames \a temporary onto \a target in the same folder, replacing a file that stands there, and
/// returns when the rename is on the medium. False when the rename failed (both stay as they were)
/// or could not be confirmed to be on the medium.
bool replaceFile(const QString &temporary, const QString &target);

enum class MoveResult {
    Moved,
    Occupied, ///< something stands under the new name; both stay as they were
    Failed,   ///< nothing has moved
};
/// Gives the file at \a from (a link as a link) the name \a to on the same volume. Never replaces,
/// never copies. Blocks; for worker threads.
MoveResult moveFile(const QString &from, const QString &to);

} // namespace platform
