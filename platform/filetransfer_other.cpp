#include "platform/filetransfer.h"

#include <QFile>
#include <QFileInfo>
#include <QVarLengthArray>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

namespace platform {

namespace {

constexpr size_t stepBytes = size_t(4) * 1024 * 1024; // between two looks at the cancel flag
constexpr size_t blockBytes = 4096;                   // what any disk takes past the cache
constexpr size_t directStepBytes = size_t(8) * 1024 * 1024;
constexpr off_t worthDirectBytes = off_t(1024) * 1024; // smaller files gain nothing
constexpr size_t bufferBytes = size_t(256) * 1024;

/// An open file, closed on every way out.
class Descriptor
{
public:
    Descriptor(const QString &path, int flags)
        : fd_(open(QFile::encodeName(path).constData(), flags | O_CLOEXEC, 0666))
    {
    }
    ~Descriptor()
    {
        if (fd_ >= 0)
            close(fd_);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)

    bool isOpen() const { return fd_ >= 0; }
    operator int() const { return fd_; }

private:
    int fd_;
};

bool writeAll(int to, const char *data, ssize_t size)
{
    while (size > 0) {
        const ssize_t written = write(to, data, size_t(size));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        size -= written;
    }
    return true;
}

/// Copies up to one step through memory; returns the bytes copied, 0 at the end, -1 on failure.
ssize_t copyStepByHand(int from, int to)
{
    QVarLengthArray<char, bufferBytes> buffer(bufferBytes);
    ssize_t copied = 0;
    while (size_t(copied) < stepBytes) {
        const ssize_t got = read(from, buffer.data(), size_t(buffer.size()));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0 || !writeAll(to, buffer.constData(), got))
            return -1;
        if (got == 0)
            break;
        copied += got;
    }
    return copied;
}

/// Like copyStepByHand(), inside the kernel where the file systems can do it. \a byHand is set once
/// they cannot; both files stand where the next step goes on.
ssize_t copyStep(int from, int to, bool *byHand)
{
#ifdef Q_OS_LINUX
    if (!*byHand) {
        const ssize_t copied = copy_file_range(from, nullptr, to, nullptr, stepBytes, 0);
        if (copied > 0)
            return copied;
        if (copied < 0 && errno == EINTR)
            return copyStep(from, to, byHand);
        if (copied < 0 && errno != EXDEV && errno != EINVAL && errno != ENOSYS &&
            errno != EOPNOTSUPP && errno != EBADF && errno != EPERM)
            return -1;
        // Some file systems answer 0 in mid-file; reading decides whether this is the end.
        *byHand = true;
    }
#else
    *byHand = true;
#endif
    return copyStepByHand(from, to);
}

bool isUnchanged(int file, const struct stat &before)
{
    struct stat now
    {
    };
    return fstat(file, &now) == 0 && now.st_size == before.st_size &&
           now.st_mtim.tv_sec == before.st_mtim.tv_sec &&
           now.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
}

bool cloned(int from, int to)
{
#ifdef Q_OS_LINUX
    return ioctl(to, FICLONE, from) == 0;
#else
    Q_UNUSED(from)
    Q_UNUSED(to)
    return false;
#endif
}

/// Starts writing back what was just copied, so that the flush at the end finds little left to do.
void startWriteBack(int to, off_t offset, off_t bytes)
{
#ifdef Q_OS_LINUX
    sync_file_range(to, offset, bytes, SYNC_FILE_RANGE_WRITE);
#else
    Q_UNUSED(to)
    Q_UNUSED(offset)
    Q_UNUSED(bytes)
#endif
}

/// Copies whole blocks past the system's cache: they are on the medium when a step returns, which
/// the flush at the end would wait for anyway, and an import of thousands of photos does not push
/// everything else out of memory. Stops at the tail, on a cancellation, where the file system
/// cannot do it and on any trouble; the ordinary way goes on behind what is returned and finds the
/// reason.
qint64 copyBlocksDirectly(int from, const QString &target, const TransferControl &control)
{
    qint64 total = 0;
#ifdef Q_OS_LINUX
    const Descriptor direct(target, O_WRONLY | O_DIRECT);
    const auto release = [](char *memory) { std::free(memory); };
    const std::unique_ptr<char, decltype(release)> buffer(
        static_cast<char *>(std::aligned_alloc(blockBytes, directStepBytes)), release);
    while (direct.isOpen() && buffer && !(control.cancelled && control.cancelled())) {
        const ssize_t got = pread(from, buffer.get(), directStepBytes, total);
        const ssize_t whole = got > 0 ? got - got % ssize_t(blockBytes) : 0;
        if (whole == 0 || pwrite(direct, buffer.get(), size_t(whole), total) != whole)
            break;
        total += whole;
        if (control.progress)
            control.progress(total);
    }
#else
    Q_UNUSED(from)
    Q_UNUSED(target)
    Q_UNUSED(control)
#endif
    return total;
}

TransferResult copyBytes(int from, int to, qint64 total, const TransferControl &control)
{
    bool byHand = false;
    if (lseek(from, total, SEEK_SET) != total || lseek(to, total, SEEK_SET) != total)
        return TransferResult::Failed;
    for (;;) {
        if (control.cancelled && control.cancelled())
            return TransferResult::Cancelled;
        const ssize_t copied = copyStep(from, to, &byHand);
        if (copied < 0)
            return TransferResult::Failed;
        if (copied == 0)
            return TransferResult::Done;
        startWriteBack(to, total, copied);
        total += copied;
        if (control.progress)
            control.progress(total);
    }
}

} // namespace

TransferResult transferFile(const QString &source, const QString &target,
                            const TransferControl &control)
{
    const Descriptor from(source, O_RDONLY);
    struct stat info
    {
    };
    if (!from.isOpen() || fstat(from, &info) != 0 || !S_ISREG(info.st_mode))
        return TransferResult::Failed;
    const Descriptor to(target, O_WRONLY | O_CREAT | O_EXCL);
    if (!to.isOpen())
        return TransferResult::Failed;

    if (!cloned(from, to)) {
        const qint64 begun =
            info.st_size >= worthDirectBytes ? copyBlocksDirectly(from, target, control) : 0;
        const TransferResult result = copyBytes(from, to, begun, control);
        if (result != TransferResult::Done)
            return result;
    }
    if (!isUnchanged(from, info))
        return TransferResult::SourceChanged;
    const timespec times[2] = {info.st_atim, info.st_mtim};
    // A share that keeps no times is no reason to refuse the photo.
    if (futimens(to, times) != 0 && (errno == ENOSPC || errno == EIO || errno == EDQUOT))
        return TransferResult::Failed;
    return fsync(to) == 0 ? TransferResult::Done : TransferResult::Failed;
}

bool flushToMedium(const QString &path)
{
    const Descriptor file(path, O_RDONLY);
    // Folders of some shares cannot be flushed and say EINVAL; their server does it.
    return file.isOpen() && (fsync(file) == 0 || errno == EINVAL);
}

bool replaceFile(const QString &temporary, const QString &target)
{
    if (rename(QFile::encodeName(temporary).constData(), QFile::encodeName(target).constData()) !=
        0)
        return false;
    return flushToMedium(QFileInfo(target).path());
}

MoveResult moveFile(const QString &from, const QString &to)
{
    const QByteArray oldName = QFile::encodeName(from);
    const QByteArray newName = QFile::encodeName(to);
#ifdef RENAME_NOREPLACE
    if (renameat2(AT_FDCWD, oldName.constData(), AT_FDCWD, newName.constData(), RENAME_NOREPLACE) ==
        0)
        return MoveResult::Moved;
    if (errno == EEXIST)
        return MoveResult::Occupied;
    if (errno != EINVAL && errno != ENOSYS)
        return MoveResult::Failed;
#endif
    // Some shares cannot rename so; they can link, or else only a look tells what stands there.
    if (link(oldName.constData(), newName.constData()) == 0) {
        if (unlink(oldName.constData()) == 0)
            return MoveResult::Moved;
        unlink(newName.constData());
        return MoveResult::Failed;
    }
    if (errno == EEXIST)
        return MoveResult::Occupied;
    struct stat there
    {
    };
    if (lstat(newName.constData(), &there) == 0)
        return MoveResult::Occupied;
    if (errno != ENOENT)
        return MoveResult::Failed;
    return rename(oldName.constData(), newName.constData()) == 0 ? MoveResult::Moved
                                                                 : MoveResult::Failed;
}

} // namespace platform
