#pragma once

#include <QString>

/// Closes a file that holds a secret to all but its owner, where it is open to others: an earlier
/// version, or a copy from elsewhere, may have left it so. Where that fails the log says so, once
/// for each file. Interface thread.
void keepToOwner(const QString &path);
