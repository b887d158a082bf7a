#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QSize>

/// What a camera's file says of a picture besides its pixels, and what a file made of it is to say.
struct CameraData
{
    QByteArray exif;    ///< when, with what, by whom and where it was taken; may be empty
    QByteArray profile; ///< what its colours mean; may be empty
};

/// The camera's block \a exif as it is true of the picture turned upright, \a size pixels large:
/// the orientation is the normal one, the picture's size is told, the preview, which is not turned,
/// is no longer linked. Nothing is moved, so that what refers to places within the block stays
/// right. Empty when the block cannot be understood so far.
QByteArray exifOfUpright(QByteArray exif, const QSize &size);

/// When the shutter was released, in the camera's own local time, as the camera's block \a exif
/// says; invalid when it does not. Also reads the head of a raw file that is laid out as TIFF.
QDateTime takenAt(QByteArray exif);

/// Whether \a profile is one for grey pictures, or for those in red, green and blue.
bool isGrayProfile(const QByteArray &profile);
bool isRgbProfile(const QByteArray &profile);

/// \a jpeg, just written, with \a data put in front of what it holds.
QByteArray withCameraData(QByteArray jpeg, const CameraData &data);
