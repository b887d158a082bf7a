#include "platform/fileaccess.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr mode_t anyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

} // namespace

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

} // namespace platform
