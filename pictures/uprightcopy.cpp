#include "pictures/uprightcopy.h"

#include "pictures/capturetime.h"
#include "pictures/picturereader.h"

#include <cstdlib>

namespace {

constexpr int side = 32;
/// Of 255: writing a JPEG anew changes a grey by less on the average, another shot by more.
constexpr int mostDifference = 6;

QImage smallGrey(PictureReader *reader)
{
    constexpr int readSide = 8 * side;
    reader->setScaledSize(
        reader->size().scaled(readSide, readSide, Qt::KeepAspectRatioByExpanding));
    const QImage upright = reader->readUpright();
    return upright.isNull()
               ? QImage()
               : upright.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                     .convertToFormat(QImage::Format_Grayscale8);
}

int meanDifference(const QImage &one, const QImage &other)
{
    int sum = 0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            sum += std::abs(one.constScanLine(y)[x] - other.constScanLine(y)[x]);
    }
    return sum / (side * side);
}

} // namespace

bool looksUprightCopyOf(const QString &source, const QString &target)
{
    PictureReader before(source, picturebounds::shown);
    PictureReader after(target, picturebounds::shown);
    if (!before.canRead() || !after.canRead() ||
        before.transformation() == QImageIOHandler::TransformationNone ||
        after.transformation() != QImageIOHandler::TransformationNone ||
        before.uprightSize() != after.uprightSize() ||
        readCaptureTime(source) != readCaptureTime(target))
        return false;
    const QImage one = smallGrey(&before);
    const QImage other = smallGrey(&after);
    return !one.isNull() && !other.isNull() && meanDifference(one, other) <= mostDifference;
}
