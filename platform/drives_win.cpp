#include "platform/drives.h"

#include <windows.h>

namespace platform {

QString driveRoot(const QString &path)
{
    if (path.size() < 2 || path.at(1) != QLatin1Char(':'))
        return {};
    return path.left(2) + QLatin1Char('/');
}

bool isRemoteDrive(const QString &path)
{
    const QString root = driveRoot(path);
    return !root.isEmpty() && GetDriveTypeW(root.toStdWString().c_str()) == DRIVE_REMOTE;
}

} // namespace platform
