#include "fileimport/thumbnaildecoding.h"

#include <QBuffer>
#include <QImageReader>

namespace {

/// \a size scaled to fit into \a bounds, never without any pixel.
QSize fitted(const QSize &size, const QSize &bounds)
{
    return size.scaled(bounds, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

} // namespace

QImage decodeThumbnail(const QByteArray &body, const QSize &size)
{
    QBuffer buffer;
    buffer.setData(body);
    QImageReader reader(&buffer);
    // Other readers that are installed, such as for drawings, may fetch or compute what they like.
    static const QByteArrayList photoFormats = {"jpeg", "png", "webp", "bmp", "gif"};
    const QByteArray format = reader.format();
    if (!photoFormats.contains(format))
        return {};
    const QSize stored = reader.size();
    const bool isJpeg = format == "jpeg";
    if (!stored.isValid() || stored.isEmpty() ||
        qint64(stored.width()) * stored.height() >
            (isJpeg ? largestJpegPixels : largestOtherPixels))
        return {};
    reader.setAutoTransform(true);
    const bool lies = reader.transformation() & QImageIOHandler::TransformationRotate90;
    if (isJpeg) {
        // Twice as large as wanted, so that there is something to smooth.
        const QSize rough = fitted(stored, 2 * (lies ? size.transposed() : size));
        if (rough.width() < stored.width())
            reader.setScaledSize(rough);
    }
    const QImage picture = reader.read();
    if (picture.isNull())
        return {};
    return picture.scaled(fitted(picture.size(), size), Qt::IgnoreAspectRatio,
                          Qt::SmoothTransformation);
}

QByteArray packThumbnail(const QImage &thumbnail)
{
    constexpr int quality = 92;
    QByteArray packed;
    QBuffer buffer(&packed);
    buffer.open(QIODevice::WriteOnly);
    const bool isPhoto = !thumbnail.hasAlphaChannel();
    thumbnail.save(&buffer, isPhoto ? "jpeg" : "png", isPhoto ? quality : -1);
    return packed;
}
