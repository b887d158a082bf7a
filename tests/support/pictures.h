#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

/// A picture whose corners tell how it was turned: top left red, top right green, bottom left blue,
/// the rest grey.
QImage cornerPicture(const QSize &size);

/// The corners of such a picture, row by row, as RGBx for one that stands upright: x for what is
/// none of the colours.
QString corners(const QImage &picture);

/// Any picture as a JPEG with an orientation tag (EXIF, 1 to 8), its pixels as they are.
QByteArray jpegOf(const QImage &picture, int orientation = 1, int quality = 90);

/// The JPEG as one that claims another size than its own.
QByteArray claiming(QByteArray jpeg, int width, int height);
