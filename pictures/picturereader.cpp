#include "pictures/picturereader.h"

#include "pictures/wholeness.h"

#include <QBuffer>
#include <QColorSpace>
#include <QFile>
#include <QTransform>

#include <algorithm>

using namespace picturebounds;

namespace {

std::mutex &veryLargePictures()
{
    static std::mutex oneAtATime;
    return oneAtATime;
}

/// Whether the reader of such files keeps no more of them than what is wanted: colours of eight
/// bits, line after line.
bool isReducedByTheLine(QIODevice *png)
{
    constexpr int headBytes = 29;
    const QByteArray head = png->read(headBytes);
    constexpr int depthAt = 24;
    constexpr int coloursAt = 25;
    constexpr int interlaceAt = 28;
    return head.size() == headBytes && head.at(depthAt) == 8 &&
           (head.at(coloursAt) == 2 || head.at(coloursAt) == 6) && head.at(interlaceAt) == 0;
}

} // namespace

PictureReader::PictureReader(const QString &path, const PictureBounds &bounds)
    : path_(path), bounds_(bounds)
{
    start();
}

PictureReader::PictureReader(const QByteArray &bytes, const PictureBounds &bounds)
    : bytes_(bytes), bounds_(bounds)
{
    static const QByteArrayList photoFormats = {"jpeg", "png", "webp", "bmp", "gif"};
    start();
    if (!photoFormats.contains(format()))
        reader_.reset();
}

std::unique_ptr<QIODevice> PictureReader::open() const
{
    std::unique_ptr<QIODevice> device;
    if (path_.isEmpty()) {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(bytes_);
        device = std::move(buffer);
    } else {
        device = std::make_unique<QFile>(path_);
    }
    return device->open(QIODevice::ReadOnly) ? std::move(device) : nullptr;
}

void PictureReader::start()
{
    device_ = open();
    if (!device_)
        return;
    reader_ = std::make_unique<QImageReader>(device_.get());
    reader_->setDecideFormatFromContent(true);
    format_ = reader_->format();
}

QSize PictureReader::uprightSize() const
{
    return transformation() & QImageIOHandler::TransformationRotate90 ? size().transposed()
                                                                      : size();
}

QImageIOHandler::Transformations PictureReader::transformation() const
{
    return reader_ ? reader_->transformation() : QImageIOHandler::TransformationNone;
}

const JpegHead &PictureReader::head()
{
    if (!head_) {
        const std::unique_ptr<QIODevice> device = open();
        head_ = device ? readJpegHead(device.get()) : JpegHead();
    }
    return *head_;
}

/// By the decoder, at most.
qint64 PictureReader::pixelsHeld()
{
    const QSize stored = size();
    const bool isScaled = scaledSize_.isValid() && scaledSize_ != stored;
    if (isScaled && format() == "jpeg" && !head().heldWhole) {
        // Decoded at a half, a quarter or an eighth of each side, then scaled to what is wanted.
        constexpr int smallest = 8;
        int part = 1;
        while (part < smallest && scaledSize_.width() * part * 2 <= stored.width() &&
               scaledSize_.height() * part * 2 <= stored.height())
            part *= 2;
        return pixelsOf(stored) / part / part;
    }
    if (isScaled && format() == "png" && scaledSize_.width() <= stored.width()) {
        const std::unique_ptr<QIODevice> device = open();
        if (device && isReducedByTheLine(device.get()))
            return pixelsOf(scaledSize_);
    }
    return pixelsOf(stored);
}

PictureReader::Problem PictureReader::refusal()
{
    if (!canRead() || size().isEmpty())
        return Problem::NoPicture;
    const qint64 most = format() == "jpeg" ? bounds_.jpegPixels : bounds_.otherPixels;
    if (pixelsOf(size()) > most || pixelsHeld() > heldPixels)
        return Problem::TooLarge;
    if (acceptsIncomplete_)
        return Problem::None;
    const std::unique_ptr<QIODevice> device = open();
    return device && reachesItsEnd(device.get(), format()) ? Problem::None : Problem::Incomplete;
}

QImage PictureReader::read()
{
    problem_ = refusal();
    if (problem_ != Problem::None)
        return {};
    const bool isGray = format() == "jpeg" && head().components == 1;
    if (pixelsHeld() > freelyHeldPixels && !turn_)
        turn_ = std::unique_lock<std::mutex>(veryLargePictures());
    if (scaledSize_.isValid())
        reader_->setScaledSize(scaledSize_);
    QImage image = reader_->read();
    if (image.isNull()) {
        problem_ = Problem::NoPicture;
        turn_ = {};
    }
    if (isGray && !image.isNull() && image.format() != QImage::Format_Grayscale8)
        image = image.convertToFormat(QImage::Format_Grayscale8); // which scaling loses
    return image;
}

QImage PictureReader::readUpright()
{
    const QImageIOHandler::Transformations how = transformation();
    const QImage image = read();
    QImage upright = image.mirrored(how & QImageIOHandler::TransformationMirror,
                                    how & QImageIOHandler::TransformationFlip);
    if (how & QImageIOHandler::TransformationRotate90) {
        upright = upright.transformed(QTransform().rotate(90), Qt::FastTransformation);
        upright.setColorSpace(image.colorSpace()); // which transforming loses
    }
    return upright;
}

QImage inScreenColours(const QImage &image)
{
    if (!image.colorSpace().isValid() || image.colorSpace() == QColorSpace(QColorSpace::SRgb))
        return image;
    return image.convertedToColorSpace(QColorSpace::SRgb);
}
