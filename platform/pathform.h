#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace platform {

/// The form of \a wirePath that this machine's disk calls take. The service, the clipboard and the
/// folder templates speak Windows paths; on Windows nothing changes, elsewhere back slashes become
/// slashes. Called just before the disk is touched, and nowhere else.
QString toLocalPath(const QString &wirePath);

/// Whether \a name is short enough to be one component of a path on this machine.
bool nameFits(const QString &name);

/// What \a wirePath names below the root it hangs on: a drive, a share, or elsewhere than on
/// Windows the machine's own root. Empty for a root itself; nothing when the path is not absolute
/// on this machine, or names a device. Looks at the text alone.
std::optional<QStringList> componentsBelowRoot(const QString &wirePath);

/// What stands for the disk that \a path (wire form or this machine's) lies on: its share, its
/// drive, or elsewhere than on Windows the place where its file system is mounted. Two paths of one
/// disk may differ in it. Touches no disk, which may hang.
QString volumeOf(const QString &path);

} // namespace platform
