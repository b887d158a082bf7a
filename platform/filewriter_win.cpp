#include "platform/filetime_win.h"
#include "platform/filewriter.h"
#include "platform/longpath_win.h"

#include <windows.h>

namespace platform {

struct FileWriter::State
{
    HANDLE file = INVALID_HANDLE_VALUE;
};

FileWriter::FileWriter(const QString &path, qint64 expectedBytes)
    : state_(std::make_unique<State>())
{
    state_->file =
        CreateFileW(longPath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    FILE_ALLOCATION_INFO room{};
    room.AllocationSize.QuadPart = expectedBytes;
    if (isOpen() && expectedBytes > 0)
        SetFileInformationByHandle(state_->file, FileAllocationInfo, &room, sizeof room);
}

FileWriter::~FileWriter()
{
    if (isOpen())
        CloseHandle(state_->file);
}

bool FileWriter::isOpen() const
{
    return state_->file != INVALID_HANDLE_VALUE;
}

bool FileWriter::write(const char *data, qint64 size)
{
    DWORD written = 0;
    return WriteFile(state_->file, data, DWORD(size), &written, nullptr) && written == DWORD(size);
}

bool FileWriter::finish(qint64 modified)
{
    const FILETIME time = fileTimeOf(modified);
    // A share that keeps no times is no reason to refuse the photo.
    SetFileTime(state_->file, nullptr, nullptr, &time);
    return FlushFileBuffers(state_->file);
}

} // namespace platform
