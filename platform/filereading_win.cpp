#include "platform/filereading.h"
#include "platform/filetime_win.h"
#include "platform/longpath_win.h"

#include <windows.h>

namespace platform {

namespace {

constexpr DWORD stepBytes = 2 * 1024 * 1024;
constexpr qint64 blockBytes = 4096; // what any disk takes past the cache
constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
/// Read through the cache in parts, or brought along from elsewhere, whatever is asked for.
constexpr DWORD keptSpecially =
    FILE_ATTRIBUTE_COMPRESSED | FILE_ATTRIBUTE_ENCRYPTED | FILE_ATTRIBUTE_OFFLINE;

FileStamp stampFrom(HANDLE file)
{
    BY_HANDLE_FILE_INFORMATION info{};
    FileStamp stamp;
    if (!GetFileInformationByHandle(file, &info) ||
        (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
        return stamp;
    stamp.size = qint64((quint64(info.nFileSizeHigh) << 32) | info.nFileSizeLow);
    stamp.modified = nanosecondsOf(info.ftLastWriteTime);
    stamp.id = (quint64(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
    return stamp;
}

/// Whether reading \a file without buffering goes past the cache, and where to. What keeps copies
/// of a share's files on this machine may answer from those.
ReadOrigin promisedOrigin(HANDLE file, const std::wstring &path)
{
    FILE_REMOTE_PROTOCOL_INFO remote{};
    if (GetFileInformationByHandleEx(file, FileRemoteProtocolInfo, &remote, sizeof remote))
        return remote.Flags & REMOTE_PROTOCOL_INFO_FLAG_OFFLINE ? ReadOrigin::Cache
                                                                : ReadOrigin::Server;
    FILE_BASIC_INFO basic{};
    if (!GetFileInformationByHandleEx(file, FileBasicInfo, &basic, sizeof basic) ||
        (basic.FileAttributes & keptSpecially))
        return ReadOrigin::Cache;
    std::wstring volume(path.size() + 2, L'\0');
    if (!GetVolumePathNameW(path.c_str(), volume.data(), DWORD(volume.size())))
        return ReadOrigin::Cache;
    switch (GetDriveTypeW(volume.c_str())) {
    case DRIVE_FIXED:
    case DRIVE_REMOVABLE:
    case DRIVE_CDROM:
        return ReadOrigin::Medium;
    default:
        return ReadOrigin::Cache;
    }
}

} // namespace

FileStamp stampOf(const QString &path)
{
    const HANDLE file = CreateFileW(longPath(path).c_str(), FILE_READ_ATTRIBUTES, shareAll, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return {};
    const FileStamp stamp = stampFrom(file);
    CloseHandle(file);
    return stamp;
}

struct FileReader::State
{
    struct Free
    {
        void operator()(char *memory) const { VirtualFree(memory, 0, MEM_RELEASE); }
    };

    std::wstring path;
    HANDLE file = INVALID_HANDLE_VALUE;
    bool direct = false;
    qint64 offset = 0;
    ReadOrigin promised = ReadOrigin::Cache;
    bool throughCache = true; ///< something was, or all will be
    std::unique_ptr<char, Free> buffer{
        static_cast<char *>(VirtualAlloc(nullptr, stepBytes, MEM_COMMIT, PAGE_READWRITE))};

    void open(DWORD flags)
    {
        file = CreateFileW(path.c_str(), GENERIC_READ, shareAll, nullptr, OPEN_EXISTING,
                           FILE_FLAG_SEQUENTIAL_SCAN | flags, nullptr);
    }

    void begin(Way way)
    {
        if (way == Way::PastCache)
            open(FILE_FLAG_NO_BUFFERING);
        direct = file != INVALID_HANDLE_VALUE;
        if (!direct)
            open(0);
        if (file != INVALID_HANDLE_VALUE && (!buffer || !stampFrom(file).isKnown()))
            shut();
        if (direct && file != INVALID_HANDLE_VALUE)
            promised = promisedOrigin(file, path);
        throughCache = !direct;
    }

    void shut()
    {
        CloseHandle(file);
        file = INVALID_HANDLE_VALUE;
    }

    /// As much as one call gives; 0 at the end, -1 on failure.
    qint64 readSome(char *to, DWORD size)
    {
        for (;;) {
            // Asking on behind a last block that is not full is an error.
            if (direct && offset % blockBytes != 0 && offset >= stampFrom(file).size)
                return 0;
            OVERLAPPED place{};
            place.Offset = DWORD(quint64(offset) & 0xffffffff);
            place.OffsetHigh = DWORD(quint64(offset) >> 32);
            DWORD got = 0;
            if (ReadFile(file, to, size, &got, &place)) {
                throughCache = throughCache || (!direct && got > 0);
                return got;
            }
            const DWORD error = GetLastError();
            if (error == ERROR_HANDLE_EOF)
                return 0;
            if (error != ERROR_INVALID_PARAMETER || !direct)
                return -1;
            // The wish was taken, but not for these bytes.
            direct = false;
            shut();
            open(0);
            if (file == INVALID_HANDLE_VALUE)
                return -1;
        }
    }
};

FileReader::FileReader(const QString &path, Way way) : state_(std::make_unique<State>())
{
    state_->path = longPath(path);
    state_->begin(way);
}

FileReader::~FileReader()
{
    if (isOpen())
        state_->shut();
}

bool FileReader::isOpen() const
{
    return state_->file != INVALID_HANDLE_VALUE;
}

FileStamp FileReader::stamp() const
{
    return isOpen() ? stampFrom(state_->file) : FileStamp();
}

qint64 FileReader::read()
{
    if (!isOpen())
        return -1;
    DWORD filled = 0;
    while (filled < stepBytes) {
        const qint64 got = state_->readSome(state_->buffer.get() + filled, stepBytes - filled);
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        filled += DWORD(got);
        state_->offset += got;
    }
    return filled;
}

const char *FileReader::data() const
{
    return state_->buffer.get();
}

ReadOrigin FileReader::origin() const
{
    return state_->throughCache ? ReadOrigin::Cache : state_->promised;
}

} // namespace platform
