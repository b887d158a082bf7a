#include "platform/fileaccess.h"
#include "platform/longpath_win.h"

#include <QFileInfo>

#include <optional>
#include <windows.h>

namespace platform {

namespace {

/// What tells the file from every other; nothing when there is no such file, or it is not told.
std::optional<BY_HANDLE_FILE_INFORMATION> identityOf(const QString &path)
{
    const HANDLE file = CreateFileW(longPath(path).c_str(), 0,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return {};
    BY_HANDLE_FILE_INFORMATION info{};
    const bool told = GetFileInformationByHandle(file, &info) != 0 &&
                      (info.nFileIndexHigh != 0 || info.nFileIndexLow != 0);
    CloseHandle(file);
    return told ? std::make_optional(info) : std::nullopt;
}

} // namespace

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

bool isSameFile(const QString &one, const QString &other)
{
    const auto first = identityOf(one);
    const auto second = identityOf(other);
    // Some disks have more numbers than are told here; two files of one number differ in size.
    if (first && second)
        return first->dwVolumeSerialNumber == second->dwVolumeSerialNumber &&
               first->nFileIndexHigh == second->nFileIndexHigh &&
               first->nFileIndexLow == second->nFileIndexLow &&
               first->nFileSizeHigh == second->nFileSizeHigh &&
               first->nFileSizeLow == second->nFileSizeLow;
    // Some shares number nothing; the names are left then.
    const QString path = QFileInfo(one).canonicalFilePath();
    return !path.isEmpty() &&
           path.compare(QFileInfo(other).canonicalFilePath(), Qt::CaseInsensitive) == 0;
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

Removal removeFile(const QString &path)
{
    // The long form also keeps names with a dot or a blank at their end apart from their namesakes.
    if (DeleteFileW(longPath(path).c_str()))
        return Removal::Removed;
    return GetLastError() == ERROR_ACCESS_DENIED ? Removal::Denied : Removal::Refused;
}

} // namespace platform
