#pragma once

#include <QDateTime>
#include <QImage>
#include <QSize>
#include <QString>

class QImageReader;

/// Reading and writing pictures, safely and within bounds; what the image operations are made of.
/// Blocks, for worker threads.
namespace pictureio {

/// Bounds on memory: no file that claims more pixels is decoded at all; of a format that can only
/// be read whole none beyond the second bound, and above the third one at a time.
constexpr qint64 decodablePixels = 500000000;
constexpr qint64 wholeReadPixels = 120000000;
constexpr qint64 freelyReadPixels = 50000000;

void log(const QString &line);
void log(const QString &line, const QString &path);

qint64 pixelsOf(const QSize &size);
int longSideOf(const QSize &size);
/// \a size with its long side brought to \a side; the other side rounded down.
QSize withLongSide(const QSize &size, int side);

/// Reads the picture that \a reader is set up for, whole or not at all, and within the bounds.
/// \a size is that of the stored picture. Null when it cannot be had.
QImage readWithin(QImageReader &reader, const QSize &size);

/// Writes \a image as a whole file. \a quality below 0 is the format's default; \a made, when
/// valid, becomes the time of modification. Returns what went wrong; nothing on success.
QString savePicture(const QImage &image, const QString &target, const QString &format, int quality,
                    const QDateTime &made = {});

} // namespace pictureio
