#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

/// The largest pictures that are decoded at all: a JPEG is scaled while it is read, everything else
/// is unpacked whole.
constexpr qint64 largestJpegPixels = 64 * qint64(1000 * 1000);
constexpr qint64 largestOtherPixels = 24 * qint64(1000 * 1000);

/// The picture in \a body, upright, its aspect ratio kept, as large as fits into \a size pixels.
/// Null when it is no picture of a kind that photos come in, or one that would take too much memory
/// to decode, which its header tells. Any thread.
QImage decodeThumbnail(const QByteArray &body, const QSize &size);

/// A thumbnail in few bytes, to be decoded again. Any thread.
QByteArray packThumbnail(const QImage &thumbnail);
