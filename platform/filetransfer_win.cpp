#include "platform/filetransfer.h"
#include "platform/longpath_win.h"

#include <windows.h>

namespace platform {

namespace {

DWORD CALLBACK onProgress(LARGE_INTEGER, LARGE_INTEGER transferred, LARGE_INTEGER, LARGE_INTEGER,
                          DWORD, DWORD, HANDLE, HANDLE, LPVOID data)
{
    const auto *control = static_cast<const TransferControl *>(data);
    if (control->progress)
        control->progress(transferred.QuadPart);
    return control->cancelled && control->cancelled() ? PROGRESS_CANCEL : PROGRESS_CONTINUE;
}

} // namespace

TransferResult transferFile(const QString &source, const QString &target,
                            const TransferControl &control)
{
    const std::wstring to = longPath(target);
    auto *data = const_cast<TransferControl *>(&control); // the call hands it back untouched
    if (!CopyFileExW(longPath(source).c_str(), to.c_str(), onProgress, data, nullptr,
                     COPY_FILE_FAIL_IF_EXISTS)) {
        return GetLastError() == ERROR_REQUEST_ABORTED ? TransferResult::Cancelled
                                                       : TransferResult::Failed;
    }
    const DWORD attributes = GetFileAttributesW(to.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return TransferResult::Failed;
    if (attributes & FILE_ATTRIBUTE_READONLY)
        SetFileAttributesW(to.c_str(), attributes & ~DWORD(FILE_ATTRIBUTE_READONLY));
    return flushToMedium(target) ? TransferResult::Done : TransferResult::Failed;
}

bool flushToMedium(const QString &path)
{
    HANDLE file = CreateFileW(longPath(path).c_str(), GENERIC_WRITE,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool flushed = FlushFileBuffers(file);
    CloseHandle(file);
    return flushed;
}

bool replaceFile(const QString &temporary, const QString &target)
{
    return MoveFileExW(longPath(temporary).c_str(), longPath(target).c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

} // namespace platform
