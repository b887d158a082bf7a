#pragma once

#include <QString>

namespace platform {

/// What the system says of the entry at a path, a link taken as itself.
enum class Presence {
    There,
    Gone,    ///< there is no such entry, or no such folder
    Denied,  ///< it may be there: the way to it is closed
    Unknown, ///< it may be there: the disk or the share gives no answer
};
/// Touches the disk.
Presence presenceOf(const QString &path);

/// Whether the file at \a path may be written to. A file that carries a read-only mark (elsewhere
/// than on Windows: none of whose write bits is set) may not, not even by an administrator, so that
/// a photo somebody protected stays protected. False for what does not exist. Touches the disk.
bool mayBeWritten(const QString &path);

/// Whether the entry at \a path may be removed, or replaced by a rename: it is a file or a link to
/// one, not a folder, and carries no read-only mark. False for what does not exist. Touches the
/// disk.
bool mayBeRemoved(const QString &path);

/// Whether two paths lead to one existing file, links followed, whatever its names. Touches the
/// disk.
bool isSameFile(const QString &one, const QString &other);

/// Whether another program holds the file at \a path: on Windows has it open, so that it can be
/// neither written nor removed; elsewhere has locked it or is running it. False for what does not
/// exist or cannot be opened for other reasons. Touches the disk.
bool isInUse(const QString &path);

enum class Removal {
    Removed,
    Changed, ///< it is another file by now, see removeListed()
    Denied,  ///< the system says that this user may not
    Refused, ///< it carries a read-only mark, another program holds it, or anything else
};
/// Removes the file at \a path, or a link as a link; never a folder. In all cases but the first it
/// stays. Blocks; for worker threads.
Removal removeFile(const QString &path);

} // namespace platform
