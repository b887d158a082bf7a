#include "photoimport/run/imageoperations.h"

#include "app/context/importverification.h"
#include "app/context/logging.h"
#include "files/contenthash.h"
#include "files/filecopy.h"
#include "files/filewriting.h"
#include "photoimport/rules/photoimportrecords.h"
#include "photoimport/run/imagesteps.h"
#include "pictures/picturereader.h"
#include "pictures/picturewriter.h"
#include "platform/fileaccess.h"

#include <QColorSpace>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTransform>

#include <exception>

namespace imageoperations {

using picturebounds::pixelsOf;

namespace {

constexpr qint64 bytesPerMB = 1048576;
constexpr double pixelsPerMP = 1000000.0;

QString seconds(qint64 ms)
{
    return QString::number(double(ms) / 1000.0, 'f', 1);
}

bool readsBack()
{
    return importverification::readsBack();
}

/// Turns by a multiple of 90 degrees; pixels move, none is mixed.
QImage turned(const QImage &image, int degrees)
{
    QTransform transform;
    transform.rotate(degrees, Qt::ZAxis);
    QImage result = image.transformed(transform, Qt::FastTransformation);
    result.setColorSpace(image.colorSpace()); // which transforming loses
    return result;
}

/// Reads a large original reduced, upright, and scales it back; null when it cannot be read.
QImage readLargeUpright(PictureReader &reader, const QSize &size, const QString &source)
{
    log(QStringLiteral("超大图片旋转拷贝处理 (%1x%2, %3MP)")
            .arg(size.width())
            .arg(size.height())
            .arg(double(pixelsOf(size)) / pixelsPerMP, 0, 'f', 1));
    const QSize upright = reader.uprightSize();
    reader.setScaledSize(longSideOf(size) > reducedReadSide ? withLongSide(size, reducedReadSide)
                                                            : size);
    QImage image = reader.readUpright();
    if (!image.isNull() && image.width() != upright.width()) {
        const QSize target = uprightSize(upright);
        log(QStringLiteral("缩放回目标尺寸: %1x%2 -> %3x%4")
                .arg(image.width())
                .arg(image.height())
                .arg(target.width())
                .arg(target.height()));
        image = scaled(image, target);
    }
    if (image.isNull())
        log(QStringLiteral("超大图片渐进式旋转拷贝读取失败，回退到直接拷贝:"), source);
    return image;
}

/// The picture of \a source standing upright; null, with the reason logged, when it cannot be had.
QImage readUpright(const QString &source, qint64 bytes)
{
    PictureReader reader(source, picturebounds::imported);
    if (!reader.canRead()) {
        log(QStringLiteral("无法读取图片进行旋转拷贝:"), source);
        return {};
    }
    const QSize size = reader.size();
    if (!size.isValid()) {
        log(QStringLiteral("无法获取图片尺寸进行旋转拷贝:"), source);
        return {};
    }
    QElapsedTimer timer;
    timer.start();
    QImage image;
    if (pixelsOf(size) > largeImagePixels || bytes > largeImageBytes) {
        image = readLargeUpright(reader, size, source);
    } else {
        image = reader.readUpright();
        if (image.isNull())
            log(QStringLiteral("旋转拷贝时无法读取图片，回退到直接拷贝:"), source);
    }
    if (timer.elapsed() > slowMs)
        log(QStringLiteral("图片旋转拷贝读取耗时较长: %1秒").arg(seconds(timer.elapsed())));
    return image;
}

/// \a before: of the source, before it was looked at.
bool writeUpright(const QString &source, const QString &target, const Stamp &before,
                  WrittenOriginal *written)
{
    QElapsedTimer timer;
    timer.start();
    const QImage image = readUpright(source, before.bytes);
    if (image.isNull())
        return false;
    const QString suffix = suffixOf(source);
    const bool isJpeg = suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg");
    PictureWriting writing;
    writing.format = suffix.toLatin1();
    writing.quality = isJpeg ? originalQuality : -1;
    writing.made = before.modified;
    writing.cameraData = PictureReader(source, picturebounds::imported).cameraData();
    writing.readBack = readsBack();
    // Of the bytes that the picture was made of, which nobody has written to since.
    const QByteArray sourceHash =
        writing.readBack ? readContent(source, {}, platform::FileReader::Way::Cached).hash
                         : QByteArray();
    if (Stamp(source) != before || sourceHash.isEmpty() == writing.readBack)
        return false;
    WrittenPicture picture;
    const QString error = writePicture(image, target, writing, &picture);
    if (!error.isEmpty()) {
        log(QStringLiteral("图片旋转拷贝保存失败: %1, 错误: %2，回退到直接拷贝")
                .arg(target, error));
        return false;
    }
    log(QStringLiteral("图片旋转拷贝成功: %1 -> %2 (耗时: %3秒)")
            .arg(source, target, seconds(timer.elapsed())));
    if (written) {
        *written = {true, writing.readBack ? Proof::Derived : Proof::None, sourceHash, picture.hash,
                    picture.bytes};
    }
    return true;
}

QImage mirroredAcross(const QImage &image)
{
    return image.mirrored(true, false);
}

} // namespace

int readExifOrientation(const QString &path)
{
    const PictureReader reader(path, picturebounds::imported);
    if (!reader.canRead()) {
        log(QStringLiteral("无法读取图片EXIF信息:"), path);
        return 1;
    }
    const QImageIOHandler::Transformations transformation = reader.transformation();
    if (transformation & QImageIOHandler::TransformationRotate90)
        return 6;
    return transformation == QImageIOHandler::TransformationNone ? 1 : 3;
}

QImage rotateImageByExif(const QImage &image, int orientation)
{
    if (image.isNull()) {
        log(QStringLiteral("传入的图片为空，无法旋转"));
        return {};
    }
    QImage upright = image;
    switch (orientation) {
    case 1:
        log(QStringLiteral("EXIF方向1：正常方向，无需旋转"));
        break;
    case 2:
        log(QStringLiteral("EXIF方向2：水平翻转"));
        upright = mirroredAcross(image);
        break;
    case 3:
        log(QStringLiteral("EXIF方向3：180度旋转"));
        upright = turned(image, 180);
        break;
    case 4:
        log(QStringLiteral("EXIF方向4：垂直翻转"));
        upright = image.mirrored(false, true);
        break;
    case 5:
        log(QStringLiteral("EXIF方向5：图片逆时针90度+翻转，执行顺时针90度+水平翻转纠正"));
        upright = mirroredAcross(turned(image, 90));
        break;
    case 6:
        log(QStringLiteral("EXIF方向6：图片顺时针90度，执行逆时针90度纠正"));
        upright = turned(image, -90);
        break;
    case 7:
        log(QStringLiteral("EXIF方向7：图片顺时针90度+翻转，执行逆时针90度+水平翻转纠正"));
        upright = mirroredAcross(turned(image, -90));
        break;
    case 8:
        log(QStringLiteral("EXIF方向8：图片逆时针90度，执行顺时针90度纠正"));
        upright = turned(image, 90);
        break;
    default:
        log(QStringLiteral("未知的EXIF方向值: %1").arg(orientation));
        break;
    }
    if (upright.isNull()) {
        log(QStringLiteral("图片旋转失败，EXIF方向: %1").arg(orientation));
    } else {
        log(QStringLiteral("图片旋转成功，EXIF方向: %1, 原尺寸: %2x%3, 新尺寸: %4x%5")
                .arg(orientation)
                .arg(image.width())
                .arg(image.height())
                .arg(upright.width())
                .arg(upright.height()));
    }
    return upright;
}

QSize uprightSize(const QSize &original)
{
    return pixelsOf(original) > veryLargePixels ? withLongSide(original, veryLargeOutputSide)
                                                : original;
}

bool copyBytes(const QString &source, const QString &target, JobFailure *failure,
               WrittenOriginal *written)
{
    const VerifiedCopy copy =
        copyVerified(source, target, readsBack() ? Verification::ReadBack : Verification::Size);
    if (copy.outcome == CopyOutcome::Copied) {
        if (written)
            *written = {false, copy.proof, copy.hash, copy.hash, copy.bytes};
        return true;
    }
    const QString error = copyProblem(copy.outcome, source, target);
    log(QStringLiteral("文件拷贝失败:"), error);
    return failed(failure, error);
}

bool rotateCopyImage(const QString &source, const QString &target, JobFailure *failure,
                     WrittenOriginal *written)
{
    if (!mayReplace(target)) {
        log(QStringLiteral("文件拷贝失败:"), notReplacedText());
        return failed(failure, notReplacedText());
    }
    const Stamp before(source);
    const QString megabytes = QString::number(before.bytes / bytesPerMB);
    if (before.bytes > plainCopyBytes) {
        log(QStringLiteral("文件过大 (%1MB)，使用直接拷贝: %2").arg(megabytes, source));
        return copyBytes(source, target, failure, written);
    }
    log(QStringLiteral("开始旋转拷贝，文件大小: %1MB, 源文件: %2").arg(megabytes, source));
    try {
        if (writeUpright(source, target, before, written))
            return true;
    } catch (const std::exception &exception) {
        log(QStringLiteral("图片旋转拷贝异常: %1, 错误: %2，回退到直接拷贝")
                .arg(source, QString::fromUtf8(exception.what())));
    } catch (...) {
        log(QStringLiteral("图片旋转拷贝未知异常: %1，回退到直接拷贝").arg(source));
    }
    return copyBytes(source, target, failure, written);
}

bool copyOriginal(const QString &source, const QString &target, JobFailure *failure,
                  WrittenOriginal *written)
{
    const QFileInfo file(source);
    if (!file.exists()) {
        log(QStringLiteral("源文件不存在:"), source);
        return failed(failure, QStringLiteral("源文件不存在"));
    }
    if (platform::isSameFile(source, target)) {
        // Chosen from the order's own folder: turning it would overwrite the only original.
        qCInfo(lcTessavo).noquote() << "is in its place already:" << source;
        return true;
    }
    if (!mayReplace(target)) {
        log(QStringLiteral("文件拷贝失败:"), notReplacedText());
        return failed(failure, notReplacedText());
    }
    QElapsedTimer timer;
    timer.start();
    const int orientation = readExifOrientation(source);
    if (orientation != 1) {
        log(QStringLiteral("检测到图片需要旋转，EXIF方向: %1, 源文件: %2")
                .arg(QString::number(orientation), source));
        return rotateCopyImage(source, target, failure, written);
    }
    log(QStringLiteral("图片方向正常，直接拷贝:"), source);
    const bool copied = copyBytes(source, target, failure, written);
    if (timer.elapsed() > slowMs) {
        log(QStringLiteral("文件拷贝耗时较长: %1秒, 文件: %2")
                .arg(seconds(timer.elapsed()), source));
    }
    return copied;
}

} // namespace imageoperations
