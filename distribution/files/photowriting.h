#pragma once

#include <QByteArray>
#include <QString>

/// Copying and storing the files of photos. Paths are as this machine writes them. What touches the
/// disk blocks: for worker threads.
namespace photowriting {

/// The thumbnail of the photo at \a path, which may be in wire form: "all" becomes "90". A path
/// that does not lead through a folder "all" stays as it is.
QString thumbnailOf(const QString &path);

/// Makes sure of \a folder with all its parents; others may be doing the same.
bool ensureFolder(const QString &folder);

/// Copies \a source onto \a target unless what stands there may not be replaced.
bool copyOnto(const QString &source, const QString &target);

enum class CopyEnding {
    Copied,
    CopiedIncomplete, ///< byte for byte, as the picture ends early and could not be turned
    Failed,
};
/// The same, upright: a picture whose orientation tag says that it is to be turned is turned,
/// anything else is copied byte for byte, and so is what cannot be turned.
CopyEnding copyUprightOnto(const QString &source, const QString &target);

enum class StoreOutcome { Stored, NoImage, NotSaved };
/// Stores the image that \a bytes hold, all of it and upright, in the format that the suffix of
/// \a target names.
StoreOutcome storeImage(const QByteArray &bytes, const QString &target);

} // namespace photowriting
