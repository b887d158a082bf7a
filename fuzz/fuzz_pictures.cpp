// Whole pictures, decoded: never more memory than their bounds allow, whatever they claim.
#include "fuzz/harness.h"
#include "pictures/picturereader.h"

using fuzzing::require;

namespace {

constexpr PictureBounds bounds{picturebounds::megapixel, picturebounds::megapixel};

/// The first byte says how the picture that follows is read.
enum Way : uint8_t { Scaled = 1, Upright = 2, Incomplete = 4, AsFile = 8 };

void read(PictureReader *reader, uint8_t way)
{
    constexpr int side = 100;
    if (way & Scaled)
        reader->setScaledSize(QSize(side, side));
    if (way & Incomplete)
        reader->acceptIncomplete();
    reader->cameraData();
    const QImage image = way & Upright ? reader->readUpright() : reader->read();
    require(image.isNull() == (reader->problem() != PictureReader::Problem::None),
            "either there is a picture or a reason");
    require(picturebounds::pixelsOf(image.size()) <= bounds.jpegPixels, "no more than allowed");
    inScreenColours(image);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes = fuzzing::bytesOf(data + 1, size - 1);
    if (data[0] & AsFile) {
        PictureReader reader(fuzzing::scratchFile(QStringLiteral("picture"), bytes), bounds);
        read(&reader, data[0]);
    } else {
        PictureReader reader(bytes, bounds);
        read(&reader, data[0]);
    }
    return 0;
}
