// What files say of themselves before and after their pixels: a JPEG's head and end, the camera's
// block, the ends of other kinds.
#include "fuzz/harness.h"
#include "pictures/cameradata.h"
#include "pictures/capturetime.h"
#include "pictures/jpeghead.h"
#include "pictures/wholeness.h"

#include <QBuffer>

using fuzzing::require;

namespace {

void readBlock(const QByteArray &exif)
{
    const QSize size(60, 40);
    const QByteArray upright = exifOfUpright(exif, size);
    if (upright.isEmpty())
        return;
    require(upright.size() == exif.size(), "nothing is moved within the block");
    isGrayProfile(exif);
    isRgbProfile(exif);
}

JpegHead headOf(QByteArray jpeg)
{
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::ReadOnly);
    return readJpegHead(&buffer);
}

/// What a file is given it says, as long as it fits into one.
void requireKept(const CameraData &data)
{
    const CameraData kept =
        headOf(withCameraData(QByteArray("\xff\xd8\xff\xd9", 4), data)).cameraData;
    constexpr int largestBlock = 65533 - 6;
    require(kept.exif == (data.exif.size() <= largestBlock ? data.exif : QByteArray()),
            "a camera's block is kept");
    require(kept.profile == data.profile, "a profile is kept");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzzing::bytesOf(data, size);
    const JpegHead head = headOf(bytes);
    require(head.components >= 0 && head.components < 256, "a byte counts the colours");
    requireKept(head.cameraData);
    requireKept({bytes, bytes});
    readBlock(head.cameraData.exif);
    readBlock(bytes);
    takenAt(head.cameraData.exif);
    takenAt(bytes);
    for (const char *format : {"jpeg", "gif", "bmp", "png", ""}) {
        QBuffer buffer;
        buffer.setData(bytes);
        buffer.open(QIODevice::ReadOnly);
        reachesItsEnd(&buffer, format);
    }
    return 0;
}
