#include "pictures/picturewriter.h"

#include "files/filewriting.h"

#include <QBuffer>
#include <QColorSpace>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>

namespace {

bool isJpeg(const QByteArray &format)
{
    return format == "jpg" || format == "jpeg";
}

QByteArray fittingProfile(const QByteArray &profile, bool isGray)
{
    return (isGray ? isGrayProfile(profile) : isRgbProfile(profile)) ? profile : QByteArray();
}

/// Returns what went wrong.
QString encode(QImage image, const PictureWriting &how, QByteArray *bytes)
{
    CameraData added;
    const bool isGray = image.format() == QImage::Format_Grayscale8;
    if (isJpeg(how.format)) {
        added.exif = exifOfUpright(how.cameraData.exif, image.size());
        added.profile = fittingProfile(how.cameraData.profile, isGray);
    }
    // The one that was read is more than its approximation, a grey picture takes no other, and what
    // Qt could not make anything of, such as one for inks, it would write as it came.
    if (isGray || !added.profile.isEmpty() || !image.colorSpace().isValid())
        image.setColorSpace({});
    QBuffer buffer(bytes);
    QImageWriter writer(&buffer, how.format);
    if (how.quality >= 0)
        writer.setQuality(how.quality);
    if (!writer.write(image))
        return writer.errorString();
    *bytes = withCameraData(std::move(*bytes), added);
    return {};
}

} // namespace

QString writePicture(const QImage &image, const QString &target, const PictureWriting &how)
{
    // Encoded in memory, so that a full disk cannot pass unnoticed inside the encoder.
    QByteArray bytes;
    QString error = encode(image, how, &bytes);
    if (!error.isEmpty())
        return error;
    error = QStringLiteral("无法写入目标文件夹");
    const bool written = writeWholeFile(target, [&](const QString &temporary) {
        QFile file(temporary);
        const bool whole =
            file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
        if (!whole)
            error = file.errorString();
        else if (how.made.isValid())
            file.setFileTime(how.made, QFileDevice::FileModificationTime);
        return whole;
    });
    if (written)
        return {};
    return hasRoomFor(QFileInfo(target).path(), bytes.size()) ? error : noRoomText();
}
