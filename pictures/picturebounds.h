#pragma once

#include <QSize>

/// How many pixels a picture may claim before any memory is taken for it. A JPEG is scaled while it
/// is read; most other kinds are unpacked whole first.
struct PictureBounds
{
    qint64 jpegPixels;
    qint64 otherPixels;
};

namespace picturebounds {

constexpr qint64 megapixel = 1000000;

/// Files that a user chose to import or deliver.
constexpr PictureBounds imported{500 * megapixel, 500 * megapixel};
/// What is only looked at or printed, and everything that comes over the network.
constexpr PictureBounds shown{200 * megapixel, 64 * megapixel};

/// What a decoder may hold at once, whatever it is read for.
constexpr qint64 heldPixels = 120 * megapixel;
/// Pictures of which a decoder holds more are read one at a time.
constexpr qint64 freelyHeldPixels = 50 * megapixel;

/// Bytes of a picture that comes over the network, unpacked.
constexpr qint64 fetchedBytes = qint64(64) * 1024 * 1024;

constexpr qint64 pixelsOf(const QSize &size)
{
    return qint64(size.width()) * size.height();
}

} // namespace picturebounds
