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

/// A source while it is copied, held open so that the system tells its state of now and not what
/// its folder remembers.
class Source
{
public:
    explicit Source(const std::wstring &path)
        : file_(CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr))
        , isKnown_(look(&before_))
    {
    }
    ~Source()
    {
        if (file_ != INVALID_HANDLE_VALUE)
            CloseHandle(file_);
    }
    Q_DISABLE_COPY_MOVE(Source)

    bool isKnown() const { return isKnown_; }

    bool isUnchanged() const
    {
        BY_HANDLE_FILE_INFORMATION now{};
        return look(&now) && now.nFileSizeHigh == before_.nFileSizeHigh &&
               now.nFileSizeLow == before_.nFileSizeLow &&
               CompareFileTime(&now.ftLastWriteTime, &before_.ftLastWriteTime) == 0;
    }

private:
    bool look(BY_HANDLE_FILE_INFORMATION *info) const
    {
        return file_ != INVALID_HANDLE_VALUE && GetFileInformationByHandle(file_, info);
    }

    HANDLE file_;
    BY_HANDLE_FILE_INFORMATION before_{};
    bool isKnown_;
};

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
    const std::wstring from = longPath(source);
    const Source looked(from);
    if (!looked.isKnown())
        return TransferResult::Failed;
    if (!CopyFileExW(from.c_str(), to.c_str(), onProgress, &progress, nullptr,
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
    if (progress.cancelled())
        return TransferResult::Cancelled;
    return looked.isUnchanged() ? TransferResult::Done : TransferResult::SourceChanged;
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

MoveResult moveFile(const QString &from, const QString &to)
{
    // Without leave to copy, another volume is a failure.
    if (MoveFileExW(longPath(from).c_str(), longPath(to).c_str(), MOVEFILE_WRITE_THROUGH))
        return MoveResult::Moved;
    const DWORD error = GetLastError();
    return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS ? MoveResult::Occupied
                                                                       : MoveResult::Failed;
}

} // namespace platform
