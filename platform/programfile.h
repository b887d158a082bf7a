#pragma once

#include <QString>

namespace platform {

/// Folder of the running program's file, with slashes; empty when the system does not tell. Needs
/// no application object.
QString programFolder();

} // namespace platform
