#pragma once

#include <QString>

namespace platform {

/// Takes away whatever rights others than its owner have to the file at \a path. False when they
/// keep some, or nothing can be told of the file. On Windows the folder of the user's own settings
/// sees to that, and nothing is done here.
bool closeToOthers(const QString &path);

} // namespace platform
