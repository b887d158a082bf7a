#include "distribution/photofiles.h"

#include "files/filecopy.h"
#include "files/filewriting.h"

#include <QBuffer>
#include <QDebug>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>

#include <algorithm>

namespace photofiles {

namespace {

constexpr int bestQuality = 100;

/// The format that a file of this name is in; empty when it names none that is known.
QByteArray formatOf(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg"))
        return "jpeg";
    return suffix.toLatin1();
}

bool saveImage(const QImage &image, const QString &target, QString *error)
{
    const bool saved = mayReplace(target) && writeWholeFile(target, [&](const QString &temporary) {
                           QImageWriter writer(temporary, formatOf(target));
                           writer.setQuality(bestQuality);
                           if (writer.write(image))
                               return true;
                           *error = writer.errorString();
                           return false;
                       });
    if (!saved && error->isEmpty())
        *error = QStringLiteral("无法写入 %1").arg(target);
    return saved;
}

} // namespace

QString thumbnailOf(const QString &path)
{
    // The folder next to the file counts: a share may be called "all" too.
    const int backward = path.lastIndexOf(QLatin1String("\\all\\"));
    const int forward = path.lastIndexOf(QLatin1String("/all/"));
    const int at = std::max(backward, forward);
    if (at < 0)
        return path;
    QString thumbnail = path;
    return thumbnail.replace(at + 1, 3, QLatin1String("90"));
}

bool ensureFolder(const QString &folder)
{
    return QFileInfo(folder).isDir() || makeFolder(folder);
}

bool copyOnto(const QString &source, const QString &target)
{
    return mayReplace(target) && copyFile(source, target) == CopyOutcome::Copied;
}

bool copyUprightOnto(const QString &source, const QString &target)
{
    QElapsedTimer timer;
    timer.start();
    {
        QImageReader reader(source);
        reader.setDecideFormatFromContent(true);
        if (!reader.canRead()) {
            qDebug().noquote() << QStringLiteral("无法读取图片EXIF信息，直接拷贝:") << source;
        } else if (reader.transformation() == QImageIOHandler::TransformationNone) {
            qDebug().noquote() << QStringLiteral("图片方向正常，直接拷贝:") << source;
        } else {
            qDebug().noquote() << QStringLiteral("检测到图片需要转正，文件: %1").arg(source);
            reader.setAutoTransform(true);
            const QImage upright = reader.read();
            QString error;
            if (upright.isNull()) {
                qDebug().noquote() << QStringLiteral("转正时无法读取图片，直接拷贝:") << source;
            } else if (saveImage(upright, target, &error)) {
                qDebug().noquote() << QStringLiteral("图片转正拷贝成功: %1 (耗时: %2ms)")
                                          .arg(target, QString::number(timer.elapsed()));
                return true;
            } else {
                qDebug().noquote() << QStringLiteral("图片转正保存失败: %1, 错误: %2，尝试直接拷贝")
                                          .arg(target, error);
            }
        }
    }
    return copyOnto(source, target);
}

StoreOutcome storeImage(const QByteArray &bytes, const QString &target)
{
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    const QByteArray format = reader.format();
    const QImage image = reader.read();
    if (image.isNull()) {
        qDebug().noquote() << QStringLiteral("Failed to read image:") << target;
        return StoreOutcome::NoImage;
    }
    const QByteArray wanted = formatOf(target);
    // There are formats that can be read but not written; such an image stays what it is.
    const bool asItIs = format == wanted && !QImageWriter::supportedImageFormats().contains(wanted);
    QString error;
    if (asItIs ? writeBytes(target, bytes) : saveImage(image, target, &error)) {
        qDebug().noquote() << QStringLiteral("保存的照片路径：") << target;
        return StoreOutcome::Stored;
    }
    qDebug().noquote() << QStringLiteral("Failed to save image:") << target << error;
    return StoreOutcome::NotSaved;
}

} // namespace photofiles
