#include "photoimport/run/sizevariants.h"

#include "files/filecopy.h"
#include "files/filewriting.h"
#include "photoimport/rules/photoimportrecords.h"
#include "photoimport/run/decodedsources.h"
#include "photoimport/run/imageoperations.h"
#include "photoimport/run/imagesteps.h"
#include "pictures/picturereader.h"
#include "pictures/picturewriter.h"
#include "platform/fileaccess.h"

#include <QFileInfo>
#include <QImageWriter>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace imageoperations {

using picturebounds::pixelsOf;

namespace {

QString changedText()
{
    return copyProblem(CopyOutcome::SourceChanged, {}, {});
}

QString unreadableText()
{
    return QStringLiteral("图片无法读取或已损坏");
}

/// Variants are of the same sort as their source: there are none of a sort that is only read.
bool hasVariants(const QString &source)
{
    static const QList<QByteArray> written = QImageWriter::supportedImageFormats();
    return written.contains(suffixOf(source).toLatin1());
}

/// Reads a source that is too large to be read whole.
QImage readReduced(const QString &source, const QSize &intermediate)
{
    PictureReader reader(source, picturebounds::imported);
    reader.setScaledSize(intermediate);
    QImage image = reader.read();
    if (!image.isNull())
        return image;
    log(QStringLiteral("超大图片渐进式读取失败:"), source);
    PictureReader conservative(source, picturebounds::imported);
    const QSize cap(conservativeReadSide, conservativeReadSide);
    conservative.setScaledSize(longSideOf(intermediate) > conservativeReadSide
                                   ? intermediate.scaled(cap, Qt::KeepAspectRatio)
                                   : intermediate);
    return conservative.read();
}

QImage readShared(DecodedSources *shared, const QString &source, const QSize &readSize,
                  const std::function<QImage()> &decode)
{
    if (!shared)
        return decode();
    const Stamp now(source);
    const QString key = QStringLiteral("%1x%2 %3 %4 ")
                            .arg(readSize.width())
                            .arg(readSize.height())
                            .arg(now.bytes)
                            .arg(now.modified.toMSecsSinceEpoch());
    return shared->picture(key + source, decode);
}

/// The picture that a variant is scaled from, as it is stored; null when it cannot be read.
QImage readForVariant(const QString &source, const QSize &size, int longSide,
                      DecodedSources *shared)
{
    if (pixelsOf(size) <= largeImagePixels && longSideOf(size) <= variantFullReadSide) {
        QImage image = readShared(shared, source, size, [&source] {
            return PictureReader(source, picturebounds::imported).read();
        });
        if (image.isNull())
            log(QStringLiteral("图片读取失败:"), source);
        return image;
    }
    log(QStringLiteral("检测到超大图片 (%1x%2)，使用渐进式缩放处理")
            .arg(size.width())
            .arg(size.height()));
    const QSize intermediate = calculateIntermediateSize(size, longSide);
    QImage image = readShared(shared, source, intermediate, [&source, &intermediate] {
        return readReduced(source, intermediate);
    });
    if (image.isNull()) {
        log(QStringLiteral("保守模式读取仍然失败:"), source);
    } else {
        log(QStringLiteral("渐进式缩放成功，中间尺寸: %1x%2")
                .arg(image.width())
                .arg(image.height()));
    }
    return image;
}

QImage scaledToLongSide(const QImage &image, int longSide, const QString &source)
{
    const QSize wanted = withLongSide(image.size(), longSide);
    if (std::abs(image.width() - wanted.width()) <= nearTargetPx &&
        std::abs(image.height() - wanted.height()) <= nearTargetPx) {
        log(QStringLiteral("当前尺寸已接近目标尺寸，跳过缩放"));
        return image;
    }
    QImage result = scaled(image, wanted);
    if (result.isNull())
        log(QStringLiteral("最终缩放失败:"), source);
    return result;
}

/// Turns a finished variant by the folded orientation of its source; null when that fails.
QImage turnedLikeSource(const QImage &image, const QString &source)
{
    const int orientation = readExifOrientation(source);
    if (orientation == 1)
        return image;
    log(QStringLiteral("缩小后检测到需要旋转，EXIF方向: %1, 源文件: %2")
            .arg(QString::number(orientation), source));
    QImage upright = rotateImageByExif(image, orientation);
    if (upright.isNull()) {
        log(QStringLiteral("缩小图片旋转失败:"), source);
    } else {
        log(QStringLiteral("缩小图片旋转成功，最终尺寸: %1x%2")
                .arg(upright.width())
                .arg(upright.height()));
    }
    return upright;
}

bool saveVariant(const QImage &image, const QString &source, const QString &target,
                 JobFailure *failure)
{
    log(QStringLiteral("要保存图片了:"), target);
    if (QFileInfo::exists(target))
        log(QStringLiteral("照片存在，先删除照片"));
    static const QStringList withQuality = {QStringLiteral("jpg"), QStringLiteral("jpeg"),
                                            QStringLiteral("webp")};
    const QString suffix = suffixOf(source);
    PictureWriting writing;
    writing.format = suffix.toLatin1();
    writing.quality = withQuality.contains(suffix) ? variantQuality : -1;
    // Not where and with what it was taken: variants are for looking at, also by others.
    writing.cameraData.profile =
        PictureReader(source, picturebounds::imported).cameraData().profile;
    const QString error =
        mayReplace(target) ? writePicture(image, target, writing) : notReplacedText();
    if (!error.isEmpty()) {
        log(QStringLiteral("图片保存失败:"), error);
        return failed(failure, error);
    }
    log(QStringLiteral("图片处理成功: %1 -> %2 (最终尺寸: %3x%4)")
            .arg(source, target, QString::number(image.width()), QString::number(image.height())));
    return true;
}

} // namespace

QSize calculateIntermediateSize(const QSize &original, int target)
{
    const int longSide = longSideOf(original);
    const qint64 fourfold = qint64(4) * target;
    const qint64 threefold = qint64(3) * target;
    if (fourfold >= longSide)
        return original;
    qint64 side = std::min<qint64>(fourfold, reducedReadSide);
    if (longSide > 20000)
        side = std::min<qint64>(threefold, 2048);
    else if (longSide > 15000)
        side = std::min<qint64>(threefold, 3072);
    const QSize size = withLongSide(original, int(side));
    if (size.width() > original.width() || size.height() > original.height())
        return original;
    log(QStringLiteral("计算中间尺寸: %1x%2 -> %3x%4 (目标: %5)")
            .arg(original.width())
            .arg(original.height())
            .arg(size.width())
            .arg(size.height())
            .arg(target));
    return size;
}

bool compressImage(const QString &source, const QString &target, int longSide,
                   DecodedSources *shared, JobFailure *failure)
{
    if (failure)
        failure->hopeless = !hasVariants(source);
    const Stamp before(source);
    const PictureReader reader(source, picturebounds::imported);
    if (!reader.canRead()) {
        log(QStringLiteral("无法读取图片:"), source);
        return failed(failure, QFileInfo::exists(source) ? unreadableText()
                                                         : QStringLiteral("源文件不存在"));
    }
    const QSize size = reader.size();
    if (!size.isValid()) {
        log(QStringLiteral("无法获取图片尺寸:"), source);
        return failed(failure, unreadableText());
    }
    log(QStringLiteral("原图尺寸: %1x%2").arg(size.width()).arg(size.height()));
    if (longSide < 1 || longSide > variantSideLimit) {
        log(QStringLiteral("最终缩放失败:"), source);
        return failed(failure, QStringLiteral("目标尺寸无效"));
    }
    if (platform::isSameFile(source, target)) {
        // Chosen from among the order's own variants: it may be all that there is of the photo.
        log(QStringLiteral("图片保存失败:"), QStringLiteral("目标就是源文件"));
        return failed(failure, QStringLiteral("目标就是源文件"));
    }
    QImage image = readForVariant(source, size, longSide, shared);
    if (!image.isNull())
        image = scaledToLongSide(image, longSide, source);
    if (!image.isNull())
        image = turnedLikeSource(image, source);
    if (Stamp(source) != before) {
        log(QStringLiteral("图片保存失败:"), changedText());
        return failed(failure, changedText());
    }
    return image.isNull() ? failed(failure, unreadableText())
                          : saveVariant(image, source, target, failure);
}

} // namespace imageoperations
