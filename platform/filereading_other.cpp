#include "platform/filereading.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sys/vfs.h>
#endif

namespace platform {

namespace {

constexpr size_t stepBytes = size_t(2) * 1024 * 1024;
constexpr size_t blockBytes = 4096; // what any disk takes past the cache

#ifdef Q_OS_LINUX
constexpr int directFlag = O_DIRECT;

/// Whether the file system of \a file reads past the cache when it is asked to. Those that are not
/// known to may take the wish and read through it all the same.
ReadOrigin promisedOrigin(int file)
{
    static constexpr std::array<quint32, 6> onDisks = {
        0xef53,     // ext2 to ext4
        0x58465342, // xfs
        0x4d44,     // FAT
        0x2011bab0, // exFAT
        0xf2f52010, // f2fs
        0x7366746e, // ntfs3
    };
    static constexpr std::array<quint32, 4> onServers = {
        0x6969,     // nfs
        0x517b,     // smbfs
        0xff534d42, // cifs
        0xfe534d42, // smb2 and 3
    };
    struct statfs system
    {
    };
    if (fstatfs(file, &system) != 0)
        return ReadOrigin::Cache;
    const auto type = quint32(system.f_type);
    const auto isAmong = [type](const auto &types) {
        return std::find(types.cbegin(), types.cend(), type) != types.cend();
    };
    if (isAmong(onServers))
        return ReadOrigin::Server;
#ifdef STATX_DIOALIGN
    // Single files of such a system may be kept in a way (packed, encrypted) that cannot.
    struct statx single
    {
    };
    if (statx(file, "", AT_EMPTY_PATH, STATX_DIOALIGN, &single) == 0 &&
        (single.stx_mask & STATX_DIOALIGN) && single.stx_dio_offset_align == 0)
        return ReadOrigin::Cache;
#endif
    return isAmong(onDisks) ? ReadOrigin::Medium : ReadOrigin::Cache;
}
#else
constexpr int directFlag = 0;

ReadOrigin promisedOrigin(int)
{
    return ReadOrigin::Cache;
}
#endif

FileStamp stampFrom(const struct stat &info)
{
    FileStamp stamp;
    stamp.size = info.st_size;
    stamp.modified = qint64(info.st_mtim.tv_sec) * 1'000'000'000 + info.st_mtim.tv_nsec;
    stamp.id = info.st_ino;
    return stamp;
}

} // namespace

FileStamp stampOf(const QString &path)
{
    struct stat info
    {
    };
    return stat(QFile::encodeName(path).constData(), &info) == 0 ? stampFrom(info) : FileStamp();
}

struct FileReader::State
{
    struct Free
    {
        void operator()(char *memory) const { std::free(memory); }
    };

    int file = -1;
    bool direct = false;
    off_t offset = 0;
    ReadOrigin promised = ReadOrigin::Cache;
    bool throughCache = true; ///< something was, or all will be
    std::unique_ptr<char, Free> buffer{
        static_cast<char *>(std::aligned_alloc(blockBytes, stepBytes))};

    void open(const QString &path, Way way)
    {
        const QByteArray name = QFile::encodeName(path);
        const int flags = O_RDONLY | O_CLOEXEC;
        if (way == Way::PastCache && directFlag != 0)
            file = ::open(name.constData(), flags | directFlag);
        direct = file >= 0;
        if (file < 0)
            file = ::open(name.constData(), flags);
        struct stat info
        {
        };
        if (file >= 0 && (!buffer || fstat(file, &info) != 0 || !S_ISREG(info.st_mode)))
            shut();
        if (file < 0)
            return;
        if (direct)
            promised = promisedOrigin(file);
        throughCache = !direct;
#ifdef POSIX_FADV_DONTNEED
        if (way == Way::PastCache && promised == ReadOrigin::Cache)
            posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
#endif
    }

    void shut()
    {
        close(file);
        file = -1;
    }

    /// As much as one call gives; 0 at the end, -1 on failure.
    ssize_t readSome(char *to, size_t size)
    {
        for (;;) {
            const ssize_t got = pread(file, to, size, offset);
            if (got >= 0) {
                throughCache = throughCache || (!direct && got > 0);
                return got;
            }
            if (errno == EINVAL && direct) {
                // The wish was taken, but not for these bytes.
                direct = false;
                fcntl(file, F_SETFL, fcntl(file, F_GETFL) & ~directFlag);
            } else if (errno != EINTR) {
                return -1;
            }
        }
    }
};

FileReader::FileReader(const QString &path, Way way) : state_(std::make_unique<State>())
{
    state_->open(path, way);
}

FileReader::~FileReader()
{
    if (isOpen())
        state_->shut();
}

bool FileReader::isOpen() const
{
    return state_->file >= 0;
}

FileStamp FileReader::stamp() const
{
    struct stat info
    {
    };
    return isOpen() && fstat(state_->file, &info) == 0 ? stampFrom(info) : FileStamp();
}

qint64 FileReader::read()
{
    if (!isOpen())
        return -1;
    size_t filled = 0;
    while (filled < stepBytes) {
        const ssize_t got = state_->readSome(state_->buffer.get() + filled, stepBytes - filled);
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        filled += size_t(got);
        state_->offset += got;
    }
    return qint64(filled);
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
