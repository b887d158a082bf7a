#include "platform/folderlisting.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace platform {

namespace {

struct CloseFolder
{
    void operator()(DIR *folder) const { closedir(folder); }
};

EntryKind kindOf(int folder, dev_t volume, const char *name, const struct stat &info)
{
    if (S_ISREG(info.st_mode))
        return EntryKind::File;
    if (S_ISDIR(info.st_mode))
        return info.st_dev == volume ? EntryKind::Folder : EntryKind::FolderLink;
    if (!S_ISLNK(info.st_mode))
        return EntryKind::Other;
    struct stat target
    {
    };
    return fstatat(folder, name, &target, 0) == 0 && S_ISDIR(target.st_mode) ? EntryKind::FolderLink
                                                                             : EntryKind::File;
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
        entry.kind = kindOf(handle, itself.st_dev, name, info);
        if (entry.kind == EntryKind::File)
            entry.size = info.st_size;
        if (QFile::encodeName(entry.name) != bytes)
            entry.kind = EntryKind::Unnameable;
        if (!visit(entry))
            return FolderListing::Stopped;
    }
}

bool isLink(const QString &path)
{
    struct stat info
    {
    };
    return lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISLNK(info.st_mode);
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
