#pragma once

#include <QString>

namespace platform {

/// Root of the drive that \a path lies on, such as "D:/": on Windows that of its drive letter and
/// empty for a path without one (a share has no drive); elsewhere the folder where the file system
/// is mounted, found from what of the path exists. Does not tell whether the root can be reached.
QString driveRoot(const QString &path);

/// Whether the drive that \a path lies on is another machine's, so that it can be gone although the
/// path was good a moment ago. False for a path without a drive. Elsewhere than on Windows this
/// touches the disk and can block on a dead share.
bool isRemoteDrive(const QString &path);

} // namespace platform
