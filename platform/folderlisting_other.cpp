#include "platform/folderlisting.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

struct CloseFolder
{
    void operator()(DIR *folder) const { closedir(folder); }
};

struct CloseFile
{
    explicit CloseFile(int file) : handle(file) {}
    ~CloseFile()
    {
        if (handle >= 0)
            close(handle);
    }
    Q_DISABLE_COPY_MOVE(CloseFile)

    const int handle;
};

/// The number of the mount that an open entry lies on, as the system words it; empty for unknown.
QByteArray mountOf(int handle)
{
    QFile file(QStringLiteral("/proc/self/fdinfo/%1").arg(handle));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("mnt_id:"))
            return line;
    }
    return {};
}

/// Whether something is mounted on the folder \a name in \a above. Another folder of the same file
/// system may be, which then has the number of the volume around it.
bool isMountRoot(int above, const char *name)
{
#ifdef STATX_ATTR_MOUNT_ROOT
    constexpr unsigned nothingElse = 0;
    struct statx found = {};
    if (statx(above, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC, nothingElse,
              &found) == 0 &&
        (found.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT))
        return (found.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
#endif
#ifdef O_PATH
    const CloseFile itself(openat(above, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
    const CloseFile parent(openat(itself.handle, "..", O_PATH | O_CLOEXEC));
    return itself.handle >= 0 && parent.handle >= 0 &&
           mountOf(itself.handle) != mountOf(parent.handle);
#else
    return false;
#endif
}

EntryKind kindOf(int folder, dev_t volume, const char *name, const struct stat &info)
{
    if (S_ISREG(info.st_mode))
        return EntryKind::File;
    if (S_ISDIR(info.st_mode))
        return info.st_dev == volume && !isMountRoot(folder, name) ? EntryKind::Folder
                                                                   : EntryKind::FolderLink;
    if (!S_ISLNK(info.st_mode))
        return EntryKind::Other;
    struct stat target
    {
    };
    return fstatat(folder, name, &target, 0) == 0 && S_ISDIR(target.st_mode) ? EntryKind::FolderLink
                                                                             : EntryKind::File;
}

qint64 ticksOf(const struct stat &info)
{
    constexpr qint64 nsPerSecond = 1000000000;
#ifdef __APPLE__
    const timespec &time = info.st_mtimespec;
#else
    const timespec &time = info.st_mtim;
#endif
    return qint64(time.tv_sec) * nsPerSecond + time.tv_nsec;
}

bool isDots(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

FolderListing listFolder(const QString &folder,
                         const std::function<bool(const FolderEntry &entry)> &visit)
{
    const std::unique_ptr<DIR, CloseFolder> open(opendir(QFile::encodeName(folder).constData()));
    if (!open) {
        if (errno == ENOENT || errno == ENOTDIR)
            return FolderListing::Missing;
        return errno == EACCES || errno == EPERM ? FolderListing::Denied : FolderListing::Failed;
    }
    const int handle = dirfd(open.get());
    struct stat itself
    {
    };
    if (fstat(handle, &itself) != 0)
        return FolderListing::Failed;
    for (;;) {
        errno = 0;
        const dirent *found = readdir(open.get());
        if (!found)
            return errno == 0 ? FolderListing::Done : FolderListing::Failed;
        const char *name = found->d_name;
        if (isDots(name))
            continue;
        struct stat info
        {
        };
        if (fstatat(handle, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
            if (errno == ENOENT)
                continue;
            return FolderListing::Failed;
        }
        const QByteArray bytes = QByteArray::fromRawData(name, int(std::strlen(name)));
        FolderEntry entry;
        entry.name = QFile::decodeName(bytes);
        entry.isHidden = *name == '.';
        entry.kind = kindOf(handle, itself.st_dev, name, info);
        if (entry.kind == EntryKind::File) {
            entry.size = info.st_size;
            entry.modified = ticksOf(info);
        }
        if (QFile::encodeName(entry.name) != bytes)
            entry.kind = EntryKind::Unnameable;
        if (!visit(entry))
            return FolderListing::Stopped;
    }
}

qint64 msOf(qint64 ticks)
{
    constexpr qint64 nsPerMs = 1000000;
    return ticks / nsPerMs;
}

bool isMountPoint(const QString &path)
{
    struct stat info
    {
    };
    return lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isLink(const QString &path)
{
    struct stat info
    {
    };
    const QByteArray name = QFile::encodeName(path);
    if (lstat(name.constData(), &info) != 0)
        return false;
    return S_ISLNK(info.st_mode) ||
           (S_ISDIR(info.st_mode) && isMountRoot(AT_FDCWD, name.constData()));
}

Removal removeListed(const QString &path, qint64 size, qint64 modified)
{
    struct stat info
    {
    };
    if (lstat(QFile::encodeName(path).constData(), &info) == 0 && !S_ISDIR(info.st_mode) &&
        (info.st_size != size || ticksOf(info) != modified))
        return Removal::Changed;
    return removeFile(path);
}

QByteArray folderIdentity(const QString &path)
{
    struct stat info
    {
    };
    if (stat(QFile::encodeName(path).constData(), &info) != 0 || !S_ISDIR(info.st_mode))
        return {};
    return QByteArray::number(quint64(info.st_dev)) + ':' +
           QByteArray::number(quint64(info.st_ino));
}

} // namespace platform
