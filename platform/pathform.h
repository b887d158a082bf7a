#pragma once

#include <QString>

namespace platform {

/// The form of \a wirePath that this machine's disk calls take. The service, the clipboard and the
/// folder templates speak Windows paths; on Windows nothing changes, elsewhere back slashes become
/// slashes. Called just before the disk is touched, and nowhere else.
QString toLocalPath(const QString &wirePath);

/// Whether \a name is short enough to be one component of a path on this machine.
bool nameFits(const QString &name);

} // namespace platform
