#pragma once

#include "pictures/cameradata.h"

#include <QByteArray>
#include <QDateTime>
#include <QImage>
#include <QString>

/// How a picture is to be written.
struct PictureWriting
{
    QByteArray format;     ///< as a suffix names it, in lower case
    int quality = -1;      ///< below 0: the format's default
    QDateTime made;        ///< becomes the time of modification, when valid
    CameraData cameraData; ///< of what the picture was made from; only a JPEG takes it
    bool readBack = false; ///< see writePicture()
};

/// What was written.
struct WrittenPicture
{
    QByteArray hash; ///< of the file's bytes, see ContentHash; empty unless it was read back
    qint64 bytes = 0;
};

/// Writes \a image as the whole file \a target, which must be one that may be replaced. The
/// camera's block is kept as it is true of a picture that stands upright; the profile when it is
/// one for the picture's colours, otherwise that of \a image. When it is to be read back, the file
/// gets its name only when what it holds, read past the system's memory as far as that can be had,
/// is what was encoded, and that decodes whole in the size of \a image. Returns what went wrong;
/// nothing on success. Blocks; for worker threads.
QString writePicture(const QImage &image, const QString &target, const PictureWriting &how,
                     WrittenPicture *written = nullptr);
