#pragma once

#include <QString>

/// \a name as exactly one component of a path, on every platform alike. Whatever comes from outside
/// (customers, products, file names of a card) and becomes a file or folder passes through here, so
/// that a path built from it never leaves the folder it is meant for.
///
/// Characters that Windows forbids, control characters, halves of characters and a byte order mark
/// at the start become "_", trailing dots and blanks go, reserved device names get a "_" behind
/// their base name, "", "." and
/// ".." become "_", and what is too long for this machine is cut before its suffix. A harmless name
/// comes out unchanged.
QString safeFileName(const QString &name);

/// Whether Windows opens a device under the name \a component, whatever suffix follows it.
bool isDeviceName(const QString &component);
