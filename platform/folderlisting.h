#pragma once

#include "platform/fileaccess.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace platform {

/// What one entry of a folder is, links taken as what they are themselves.
enum class EntryKind {
    File,       ///< a regular file, or a link to anything but a folder
    Folder,     ///< a real one
    FolderLink, ///< a link, a junction, or something mounted: what is in it lies elsewhere
    Other,      ///< devices, pipes and sockets
    Unnameable, ///< its name is no text, so that no path made of text leads to it
};

struct FolderEntry
{
    QString name;
    qint64 size = 0;     ///< bytes; 0 unless it is a file
    qint64 modified = 0; ///< in ticks of the system's own, for comparing; 0 unless it is a file
    EntryKind kind = EntryKind::File;
    bool isHidden = false; ///< as the system sees it: by its name, on Windows by a mark
};

enum class FolderListing {
    Done,
    Stopped, ///< the visitor wanted no more
    Missing, ///< there is no such folder
    Denied,  ///< it may not be read
    Failed,  ///< reading it broke off
};

/// Ticks as milliseconds since 1970, UTC.
qint64 msOf(qint64 ticks);

/// Hands every entry of \a folder, hidden ones included, "." and ".." not, to \a visit in no
/// particular order, until that returns false. What vanishes meanwhile is left out. Never follows a
/// link below \a folder. Blocks; for worker threads.
FolderListing listFolder(const QString &folder,
                         const std::function<bool(const FolderEntry &entry)> &visit);

/// Whether what is at the FolderLink \a path is mounted there, and no link to another place.
/// Touches the disk.
bool isMountPoint(const QString &path);

/// Whether the entry at \a path itself leads elsewhere: a link, a junction, or a folder on which
/// something is mounted. False for what does not exist. Touches the disk.
bool isLink(const QString &path);

/// Does as removeFile() if what is at \a path still is what listFolder() told of it. Blocks; for
/// worker threads.
Removal removeListed(const QString &path, qint64 size, qint64 modified);

/// What tells the folder at \a path, links followed, from every other: two paths with the same
/// identity lead to one place, whatever their names. Empty when nothing can be told. Touches the
/// disk, and can block.
QByteArray folderIdentity(const QString &path);

} // namespace platform
