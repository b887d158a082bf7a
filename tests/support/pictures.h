#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

/// A picture whose corners tell how it was turned: top left red, top right green, bottom left blue,
/// the rest grey.
QImage cornerPicture(const QSize &size);

/// Any picture as a JPEG with an orientation tag (EXIF, 1 to 8), its pixels as they are.
QByteArray jpegOf(const QImage &picture, int orientation = 1, int quality = 90);
