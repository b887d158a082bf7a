#pragma once

#include <QString>

namespace platform {

/// How a card, drive or share is called; what cannot be told is empty.
struct VolumeName
{
    QString label;
    QString serial; ///< stays with the volume wherever it is put in; none has a share's folder

    friend bool operator==(const VolumeName &one, const VolumeName &other)
    {
        return one.label == other.label && one.serial == other.serial;
    }
};

/// Of the volume that the existing file or folder \a path lies on. Touches the disk; for worker
/// threads.
VolumeName volumeNameOf(const QString &path);

} // namespace platform
