#include "platform/filetransfer.h"
#include "platform/longpath_win.h"

#include <windows.h>

namespace platform {

namespace {

/// What a running copy tells its caller: every byte once, whatever the system tells when.
class Progress
{
public:
    explicit Progress(const TransferControl &control) : control_(control) {}

    bool cancelled() const { return control_.cancelled && control_.cancelled(); }

    void reached(qint64 bytes)
    {
        if (bytes <= told_)
            return;
        told_ = bytes;
        if (control_.progress)
            control_.progress(bytes);
    }

private:
    const TransferControl &control_;
    qint64 told_ = 0;
};

DWORD CALLBACK onProgress(LARGE_INTEGER, LARGE_INTEGER transferred, LARGE_INTEGER, LARGE_INTEGER,
                          DWORD, DWORD, HANDLE, HANDLE, LPVOID data)
{
    auto *progress = static_cast<Progress *>(data);
    progress->reached(transferred.QuadPart);
    return progress->cancelled() ? PROGRESS_CANCEL : PROGRESS_CONTINUE;
}

qint64 sizeOf(const std::wstring &path)
{
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
        return 0;
    return qint64((quint64(data.nFileSizeHigh) << 32) | data.nFileSizeLow);
}

} // namespace

TransferResult transferFile(const QString &source, const QString &target,
                            const TransferControl &control)
{
    const std::wstring to = longPath(target);
    Progress progress(control);
    if (progress.cancelled())
        return TransferResult::Cancelled;
    if (!CopyFileExW(longPath(source).c_str(), to.c_str(), onProgress, &progress, nullptr,
                     COPY_FILE_FAIL_IF_EXISTS)) {
        return GetLastError() == ERROR_REQUEST_ABORTED ? TransferResult::Cancelled
                                                       : TransferResult::Failed;
    }
    const DWORD attributes = GetFileAttributesW(to.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return TransferResult::Failed;
    if (attributes & FILE_ATTRIBUTE_READONLY)
        SetFileAttributesW(to.c_str(), attributes & ~DWORD(FILE_ATTRIBUTE_READONLY));
    if (!flushToMedium(target))
        return TransferResult::Failed;
    // Not every system that runs this program tells how far a copy is.
    progress.reached(sizeOf(to));
    return progress.cancelled() ? TransferResult::Cancelled : TransferResult::Done;
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
