#include "platform/fileaccess.h"
#include "platform/longpath_win.h"

#include <windows.h>

namespace platform {

Presence presenceOf(const QString &path)
{
    if (GetFileAttributesW(longPath(path).c_str()) != INVALID_FILE_ATTRIBUTES)
        return Presence::There;
    switch (GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return Presence::Gone;
    case ERROR_SHARING_VIOLATION:
        return Presence::There;
    case ERROR_ACCESS_DENIED:
        return Presence::Denied;
    default:
        return Presence::Unknown;
    }
}

bool mayBeWritten(const QString &path)
{
    const DWORD attributes = GetFileAttributesW(longPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           !(attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY));
}

bool mayBeRemoved(const QString &path)
{
    // Windows judges both by the same mark.
    return mayBeWritten(path);
}

bool isInUse(const QString &path)
{
    constexpr DWORD noSharing = 0;
    HANDLE file = CreateFileW(longPath(path).c_str(), GENERIC_READ | GENERIC_WRITE, noSharing,
                              nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
    }
    CloseHandle(file);
    return false;
}

bool removeFile(const QString &path)
{
    // The long form also keeps names with a dot or a blank at their end apart from their namesakes.
    return DeleteFileW(longPath(path).c_str()) != 0;
}

} // namespace platform
