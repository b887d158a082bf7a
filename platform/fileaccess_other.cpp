#include "platform/fileaccess.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr mode_t anyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

} // namespace

Presence presenceOf(const QString &path)
{
    struct stat info
    {
    };
    if (lstat(QFile::encodeName(path).constData(), &info) == 0)
        return Presence::There;
    switch (errno) {
    case ENOENT:
    case ENOTDIR:
        return Presence::Gone;
    case EACCES:
    case EPERM:
        return Presence::Denied;
    default:
        return Presence::Unknown;
    }
}

bool mayBeWritten(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat info
    {
    };
    if (stat(name.constData(), &info) != 0 || S_ISDIR(info.st_mode))
        return false;
    return (info.st_mode & anyWriteBit) != 0 && access(name.constData(), W_OK) == 0;
}

bool mayBeRemoved(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat info
    {
    };
    if (lstat(name.constData(), &info) != 0 || S_ISDIR(info.st_mode))
        return false;
    return S_ISLNK(info.st_mode) || (info.st_mode & anyWriteBit) != 0;
}

bool isSameFile(const QString &one, const QString &other)
{
    struct stat first
    {
    };
    struct stat second
    {
    };
    return stat(QFile::encodeName(one).constData(), &first) == 0 &&
           stat(QFile::encodeName(other).constData(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

bool isInUse(const QString &path)
{
    const int file = open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return errno == ETXTBSY;
    // Two kinds of locks that know nothing of each other; what is taken here ends with the close.
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    const bool regionLocked = fcntl(file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    const bool wholeLocked = flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(file);
    return regionLocked || wholeLocked;
}

Removal removeFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat info
    {
    };
    if (lstat(name.constData(), &info) != 0 || !mayBeRemoved(path))
        return Removal::Refused;
    // The system would remove what others work with; only what is open there and then stays.
    if (!S_ISLNK(info.st_mode) && isInUse(path))
        return Removal::Refused;
    if (unlink(name.constData()) == 0)
        return Removal::Removed;
    return errno == EACCES || errno == EPERM || errno == EROFS ? Removal::Denied : Removal::Refused;
}

} // namespace platform
