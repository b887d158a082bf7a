#include "pictures/picturewriter.h"

#include "files/contenthash.h"
#include "files/filecopy.h"
#include "files/filewriting.h"
#include "pictures/picturereader.h"
#include "platform/filetransfer.h"

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

/// Returns what went wrong.
QString writeBytes(const QByteArray &bytes, const QString &path, const QDateTime &made)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        return file.errorString();
    if (made.isValid())
        file.setFileTime(made, QFileDevice::FileModificationTime);
    return {};
}

/// Whether the file holds the bytes with that hash, and they are a whole picture.
bool holds(const QString &path, const QByteArray &hash, const QSize &size)
{
    return readContent(path).hash == hash &&
           PictureReader(path, picturebounds::imported).read().size() == size;
}

} // namespace

QString writePicture(const QImage &image, const QString &target, const PictureWriting &how,
                     WrittenPicture *written)
{
    // Encoded in memory, so that a full disk cannot pass unnoticed inside the encoder.
    QByteArray bytes;
    QString error = encode(image, how, &bytes);
    if (!error.isEmpty())
        return error;
    WrittenPicture picture;
    picture.bytes = bytes.size();
    if (how.readBack) {
        ContentHash hash;
        hash.add(bytes.constData(), bytes.size());
        picture.hash = hash.result();
    }
    error = QStringLiteral("无法写入目标文件夹");
    const bool isWritten = writeWholeFile(target, [&](const QString &temporary) {
        const QString problem = writeBytes(bytes, temporary, how.made);
        if (!problem.isEmpty()) {
            error = problem;
            return false;
        }
        if (!how.readBack)
            return true;
        if (!platform::flushToMedium(temporary))
            return false;
        const bool isGood = holds(temporary, picture.hash, image.size());
        if (!isGood)
            error = copyProblem(CopyOutcome::ContentDiffers, {}, target);
        return isGood;
    });
    if (!isWritten)
        return hasRoomFor(QFileInfo(target).path(), bytes.size()) ? error : noRoomText();
    if (written)
        *written = picture;
    return {};
}
