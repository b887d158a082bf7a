#pragma once

#include "distribution/files/fileoutcome.h"

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

/// Copies the source of \a file onto its target unless what stands there may not be replaced, and
/// notes what became of it.
bool copyOnto(FileOutcome *file);

enum class CopyEnding {
    Copied,
    CopiedIncomplete, ///< byte for byte, as the picture ends early and could not be turned
    Failed,
};
/// The same, upright: a picture whose orientation tag says that it is to be turned is turned,
/// anything else is copied byte for byte, and so is what cannot be turned.
CopyEnding copyUprightOnto(FileOutcome *file);

enum class StoreOutcome { Stored, NoImage, NotSaved };
/// Stores the image that \a bytes hold, all of it and upright, in the format that the suffix of
/// \a target names.
StoreOutcome storeImage(const QByteArray &bytes, const QString &target);

/// A file that was made under the name \a target a moment ago.
FileOutcome madeFile(const QString &target);

} // namespace photowriting
