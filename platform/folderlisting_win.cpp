#include "platform/folderlisting.h"
#include "platform/longpath_win.h"

#include <array>
#include <windows.h>

namespace platform {

namespace {

class FoundFiles
{
public:
    explicit FoundFiles(HANDLE handle) : handle_(handle) {}
    ~FoundFiles()
    {
        if (isValid())
            FindClose(handle_);
    }
    Q_DISABLE_COPY_MOVE(FoundFiles)

    bool isValid() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE handle() const { return handle_; }

private:
    HANDLE handle_;
};

/// Links and mounted volumes lead elsewhere; files of a cloud or a deduplicating disk carry a mark
/// of the same sort and do not. Of a folder the mark has to say that what is in it is its own: one
/// that does not, or that cannot be read, may be a way to another server.
bool leadsElsewhere(DWORD attributes, DWORD tag)
{
    constexpr DWORD ownContents =
        0x10000000; // of a folder; the headers at hand have no name for it
    if (!(attributes & FILE_ATTRIBUTE_REPARSE_POINT))
        return false;
    const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return IsReparseTagNameSurrogate(tag) || (isFolder && !(tag & ownContents));
}

EntryKind kindOf(const WIN32_FIND_DATAW &found)
{
    if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
        return EntryKind::File;
    return leadsElsewhere(found.dwFileAttributes, found.dwReserved0) ? EntryKind::FolderLink
                                                                     : EntryKind::Folder;
}

std::wstring within(const QString &folder, const wchar_t *pattern)
{
    std::wstring path = longPath(folder);
    if (path.back() != L'\\')
        path += L'\\';
    return path + pattern;
}

FolderListing failureOf(DWORD error)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DIRECTORY:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_NAME:
        return FolderListing::Missing;
    case ERROR_ACCESS_DENIED:
        return FolderListing::Denied;
    default:
        return FolderListing::Failed;
    }
}

qint64 together(DWORD high, DWORD low)
{
    return (qint64(high) << 32) | low;
}

qint64 ticksOf(const FILETIME &time)
{
    return together(time.dwHighDateTime, time.dwLowDateTime);
}

/// Closes with its end. Opened for looking alone: nothing that others do with the entry is
/// hindered.
class LookedAt
{
public:
    LookedAt(const QString &path, DWORD flags)
        : handle_(CreateFileW(longPath(path).c_str(), FILE_READ_ATTRIBUTES,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, flags, nullptr))
        , known_(handle_ != INVALID_HANDLE_VALUE && GetFileInformationByHandle(handle_, &info_))
    {
    }
    ~LookedAt()
    {
        if (handle_ != INVALID_HANDLE_VALUE)
            CloseHandle(handle_);
    }
    Q_DISABLE_COPY_MOVE(LookedAt)

    bool isKnown() const { return known_; }
    bool isFolder() const { return (info_.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
    const BY_HANDLE_FILE_INFORMATION &info() const { return info_; }

private:
    BY_HANDLE_FILE_INFORMATION info_{};
    HANDLE handle_;
    bool known_;
};

bool isDots(const wchar_t *name)
{
    return wcscmp(name, L".") == 0 || wcscmp(name, L"..") == 0;
}

} // namespace

FolderListing listFolder(const QString &folder,
                         const std::function<bool(const FolderEntry &entry)> &visit)
{
    WIN32_FIND_DATAW found{};
    const FoundFiles files(FindFirstFileExW(within(folder, L"*").c_str(), FindExInfoBasic, &found,
                                            FindExSearchNameMatch, nullptr,
                                            FIND_FIRST_EX_LARGE_FETCH));
    if (!files.isValid()) {
        // The root of an empty drive has not even the two dots.
        const DWORD error = GetLastError();
        const DWORD attributes = GetFileAttributesW(longPath(folder).c_str());
        if (error == ERROR_FILE_NOT_FOUND && attributes != INVALID_FILE_ATTRIBUTES &&
            (attributes & FILE_ATTRIBUTE_DIRECTORY))
            return FolderListing::Done;
        return failureOf(error);
    }
    do {
        if (isDots(found.cFileName))
            continue;
        FolderEntry entry;
        entry.name = QString::fromWCharArray(found.cFileName);
        entry.isHidden = (found.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) != 0;
        entry.kind = kindOf(found);
        if (entry.kind == EntryKind::File) {
            entry.size = together(found.nFileSizeHigh, found.nFileSizeLow);
            entry.modified = ticksOf(found.ftLastWriteTime);
        }
        if (!entry.name.isValidUtf16())
            entry.kind = EntryKind::Unnameable;
        if (!visit(entry))
            return FolderListing::Stopped;
    } while (FindNextFileW(files.handle(), &found));
    return GetLastError() == ERROR_NO_MORE_FILES ? FolderListing::Done : FolderListing::Failed;
}

qint64 msOf(qint64 ticks)
{
    constexpr qint64 ticksPerMs = 10000;
    constexpr qint64 msFrom1601To1970 = 11644473600000;
    return ticks / ticksPerMs - msFrom1601To1970;
}

bool isMountPoint(const QString &path)
{
    constexpr DWORD longestName = 64; // with its identifier a volume's takes 50
    std::array<wchar_t, longestName> volume{};
    return GetVolumeNameForVolumeMountPointW(within(path, L"").c_str(), volume.data(),
                                             longestName) != 0;
}

bool isLink(const QString &path)
{
    WIN32_FIND_DATAW found{};
    const FoundFiles file(FindFirstFileW(longPath(path).c_str(), &found));
    if (file.isValid())
        return leadsElsewhere(found.dwFileAttributes, found.dwReserved0);
    // Where the folder above may not be listed, the mark alone can be seen.
    constexpr DWORD unknownTag = 0;
    const DWORD attributes = GetFileAttributesW(longPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && leadsElsewhere(attributes, unknownTag);
}

Removal removeListed(const QString &path, qint64 size, qint64 modified)
{
    {
        const LookedAt now(path, FILE_FLAG_OPEN_REPARSE_POINT);
        // What cannot be looked at may be anything.
        if (!now.isKnown())
            return GetLastError() == ERROR_ACCESS_DENIED ? Removal::Denied : Removal::Refused;
        if (!now.isFolder() &&
            (together(now.info().nFileSizeHigh, now.info().nFileSizeLow) != size ||
             ticksOf(now.info().ftLastWriteTime) != modified))
            return Removal::Changed;
    }
    return removeFile(path);
}

QByteArray folderIdentity(const QString &path)
{
    const LookedAt folder(path, FILE_FLAG_BACKUP_SEMANTICS);
    const BY_HANDLE_FILE_INFORMATION &info = folder.info();
    if (!folder.isKnown() || !folder.isFolder() ||
        (info.nFileIndexHigh == 0 && info.nFileIndexLow == 0))
        return {};
    return QByteArray::number(quint64(info.dwVolumeSerialNumber)) + ':' +
           QByteArray::number(together(info.nFileIndexHigh, info.nFileIndexLow));
}

} // namespace platform
