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

/// Whether this machine hides a file for its \a name alone.
bool isHiddenName(const QString &name);

/// The longest start of \a base, no character halved, that is one component of a path on this
/// machine with \a tail behind it. Takes no longer for a longer base.
QString fittingStart(const QString &base, const QString &tail);

/// What \a wirePath names below the root it hangs on: a drive, a share, or elsewhere than on
/// Windows the machine's own root. Empty for a root itself; nothing when the path is not absolute
/// on this machine, or names a device. Looks at the text alone.
std::optional<QStringList> componentsBelowRoot(const QString &wirePath);

/// What stands for the disks that \a paths (wire form or this machine's) lie on, each once: a
/// share, a drive, or elsewhere than on Windows the place where a file system is mounted. Two names
/// may stand for one disk. Touches none, since that might hang.
QStringList volumesOf(const QStringList &paths);

} // namespace platform
