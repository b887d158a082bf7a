#include "platform/filewriter.h"

#include <QFile>

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr qint64 blockBytes = 4096;                  // what any disk takes past the cache
constexpr qint64 worthDirectBytes = qint64(1) << 20; // smaller pieces gain nothing
constexpr qint64 nanosecondsPerSecond = 1'000'000'000;

bool writeAll(int file, const char *data, qint64 size, qint64 offset)
{
    while (size > 0) {
        const ssize_t written = pwrite(file, data, size_t(size), offset);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        offset += written;
        size -= written;
    }
    return true;
}

bool isAligned(const char *data)
{
    return reinterpret_cast<std::uintptr_t>(data) % std::uintptr_t(blockBytes) == 0;
}

} // namespace

struct FileWriter::State
{
    QByteArray name;
    int file = -1;
    int direct = -1;
    bool mayBeDirect = true;
    qint64 offset = 0;

    /// As many whole blocks as go past the cache; on any trouble none, and the ordinary way finds
    /// the reason.
    qint64 writeDirectly(const char *data, qint64 size)
    {
#ifdef Q_OS_LINUX
        mayBeDirect =
            mayBeDirect && size >= worthDirectBytes && isAligned(data) && offset % blockBytes == 0;
        if (mayBeDirect && direct < 0)
            direct = open(name.constData(), O_WRONLY | O_DIRECT | O_NOFOLLOW | O_CLOEXEC);
        const qint64 whole = size - size % blockBytes;
        mayBeDirect =
            mayBeDirect && direct >= 0 && pwrite(direct, data, size_t(whole), offset) == whole;
        return mayBeDirect ? whole : 0;
#else
        Q_UNUSED(data)
        Q_UNUSED(size)
        return 0;
#endif
    }
};

FileWriter::FileWriter(const QString &path, qint64 expectedBytes)
    : state_(std::make_unique<State>())
{
    Q_UNUSED(expectedBytes) // these systems lay out what is written at once in one piece anyway
    state_->name = QFile::encodeName(path);
    state_->file = open(state_->name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
}

FileWriter::~FileWriter()
{
    for (const int file : {state_->direct, state_->file}) {
        if (file >= 0)
            close(file);
    }
}

bool FileWriter::isOpen() const
{
    return state_->file >= 0;
}

bool FileWriter::write(const char *data, qint64 size)
{
    const qint64 begun = state_->writeDirectly(data, size);
    state_->offset += begun;
    const qint64 rest = size - begun;
    if (rest == 0)
        return true;
    if (!writeAll(state_->file, data + begun, rest, state_->offset))
        return false;
#ifdef Q_OS_LINUX
    sync_file_range(state_->file, state_->offset, rest, SYNC_FILE_RANGE_WRITE);
#endif
    state_->offset += rest;
    return true;
}

bool FileWriter::finish(qint64 modified)
{
    timespec times[2] = {};
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_sec = time_t(modified / nanosecondsPerSecond);
    times[1].tv_nsec = long(modified % nanosecondsPerSecond);
    if (times[1].tv_nsec < 0) { // before 1970
        --times[1].tv_sec;
        times[1].tv_nsec += nanosecondsPerSecond;
    }
    // A share that keeps no times is no reason to refuse the photo.
    if (futimens(state_->file, times) != 0 && (errno == ENOSPC || errno == EIO || errno == EDQUOT))
        return false;
    return fsync(state_->file) == 0;
}

} // namespace platform
