#include "platform/drives.h"

#include <QFileInfo>
#include <QStorageInfo>

#include <algorithm>
#include <array>

namespace platform {

namespace {

/// The file system below \a path; a file that is gone is looked for where it was.
QStorageInfo storageOf(const QString &path)
{
    QString existing = QFileInfo(path).absoluteFilePath();
    while (!QFileInfo::exists(existing)) {
        const QString above = QFileInfo(existing).path();
        if (above == existing)
            break;
        existing = above;
    }
    return QStorageInfo(existing);
}

} // namespace

QString driveRoot(const QString &path)
{
    return storageOf(path).rootPath();
}

bool isRemoteDrive(const QString &path)
{
    static constexpr std::array<const char *, 9> remote = {
        "nfs", "nfs4", "cifs", "smb3", "smbfs", "afpfs", "webdav", "fuse.sshfs", "fuse.davfs2"};
    const QByteArray type = storageOf(path).fileSystemType();
    return std::any_of(remote.cbegin(), remote.cend(),
                       [&type](const char *name) { return type == name; });
}

} // namespace platform
