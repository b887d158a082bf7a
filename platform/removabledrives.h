#pragma once

#include <QString>
#include <QVector>

namespace platform {

/// A drive that can be taken out, and can be read at the moment.
struct RemovableDrive
{
    QString root; ///< with slashes
    QString label;
    qint64 bytes = 0; ///< that it holds

    friend bool operator==(const RemovableDrive &one, const RemovableDrive &other)
    {
        return one.root == other.root && one.label == other.label && one.bytes == other.bytes;
    }
};

/// Those of now, in the order of their roots. Touches the drives, and can block.
QVector<RemovableDrive> removableDrives();

} // namespace platform
