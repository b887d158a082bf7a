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
};

/// Writes \a image as the whole file \a target, which must be one that may be replaced. The
/// camera's block is kept as it is true of a picture that stands upright; the profile when it is
/// one for the picture's colours, otherwise that of \a image. Returns what went wrong; nothing on
/// success. Blocks; for worker threads.
QString writePicture(const QImage &image, const QString &target, const PictureWriting &how);
