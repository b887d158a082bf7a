#include "thumbnails/thumbnaildecoding.h"

#include "pictures/picturereader.h"

#include <QBuffer>

namespace {

/// \a size scaled to fit into \a bounds, never without any pixel.
QSize fitted(const QSize &size, const QSize &bounds)
{
    return size.scaled(bounds, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

} // namespace

QImage decodeThumbnail(const QByteArray &body, const QSize &size)
{
    PictureReader reader(body);
    const QSize stored = reader.size();
    if (reader.format() == "jpeg" && !stored.isEmpty()) {
        // Twice as large as wanted, so that there is something to smooth.
        const bool lies = reader.uprightSize() != stored;
        const QSize rough = fitted(stored, 2 * (lies ? size.transposed() : size));
        if (rough.width() < stored.width())
            reader.setScaledSize(rough);
    }
    const QImage picture = reader.readUpright();
    if (picture.isNull())
        return {};
    return inScreenColours(picture.scaled(fitted(picture.size(), size), Qt::IgnoreAspectRatio,
                                          Qt::SmoothTransformation));
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
