#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

/// The picture in \a body, upright, its aspect ratio kept, as large as fits into \a size pixels.
/// Null when it is no whole picture of a kind that photos come in, or one that is too large to
/// decode. Any thread.
QImage decodeThumbnail(const QByteArray &body, const QSize &size);

/// A thumbnail in few bytes, to be decoded again. Any thread.
QByteArray packThumbnail(const QImage &thumbnail);
