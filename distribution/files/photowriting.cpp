#include "distribution/files/photowriting.h"

#include "files/filecopy.h"
#include "files/filewriting.h"
#include "pictures/picturereader.h"
#include "pictures/picturewriter.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImageWriter>

#include <algorithm>

namespace photowriting {

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

/// Returns what went wrong. \a reader is the one that \a image was read with.
QString saveImage(const QImage &image, PictureReader *reader, const QString &target,
                  const QDateTime &made = {})
{
    if (!mayReplace(target))
        return QStringLiteral("无法写入 %1").arg(target);
    return writePicture(image, target, {formatOf(target), bestQuality, made, reader->cameraData()});
}

/// False when the picture has to be copied as it is; \a isIncomplete tells then whether it ends
/// early.
bool turnOnto(PictureReader *reader, const QString &source, const QString &target,
              bool *isIncomplete)
{
    QElapsedTimer timer;
    timer.start();
    qDebug().noquote() << QStringLiteral("检测到图片需要转正，文件: %1").arg(source);
    const QImage upright = reader->readUpright();
    if (upright.isNull()) {
        *isIncomplete = reader->problem() == PictureReader::Problem::Incomplete;
        qDebug().noquote() << QStringLiteral("转正时无法读取图片，直接拷贝:") << source;
        return false;
    }
    const QString error = saveImage(upright, reader, target, QFileInfo(source).lastModified());
    if (!error.isEmpty()) {
        qDebug().noquote()
            << QStringLiteral("图片转正保存失败: %1, 错误: %2，尝试直接拷贝").arg(target, error);
        return false;
    }
    qDebug().noquote() << QStringLiteral("图片转正拷贝成功: %1 (耗时: %2ms)")
                              .arg(target, QString::number(timer.elapsed()));
    return true;
}

void noteWritten(FileOutcome *file, FileOutcome::Kind kind)
{
    const QFileInfo target(file->target);
    file->ending = FileOutcome::Ending::Written;
    file->kind = kind;
    file->size = target.size();
    file->modified = target.lastModified().toMSecsSinceEpoch();
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

bool copyOnto(FileOutcome *file)
{
    if (!mayReplace(file->target) || copyFile(file->source, file->target) != CopyOutcome::Copied)
        return false;
    noteWritten(file, FileOutcome::Kind::Copy);
    return true;
}

CopyEnding copyUprightOnto(FileOutcome *file)
{
    bool isIncomplete = false;
    {
        const QString &source = file->source;
        PictureReader reader(source, picturebounds::imported);
        if (!reader.canRead())
            qDebug().noquote() << QStringLiteral("无法读取图片EXIF信息，直接拷贝:") << source;
        else if (reader.transformation() == QImageIOHandler::TransformationNone)
            qDebug().noquote() << QStringLiteral("图片方向正常，直接拷贝:") << source;
        else if (turnOnto(&reader, source, file->target, &isIncomplete)) {
            noteWritten(file, FileOutcome::Kind::Upright);
            return CopyEnding::Copied;
        }
    }
    if (!copyOnto(file))
        return CopyEnding::Failed;
    return isIncomplete ? CopyEnding::CopiedIncomplete : CopyEnding::Copied;
}

StoreOutcome storeImage(const QByteArray &bytes, const QString &target)
{
    PictureReader reader(bytes);
    const QByteArray format = reader.format();
    const QImage image = reader.readUpright();
    if (image.isNull()) {
        qDebug().noquote() << QStringLiteral("Failed to read image:") << target;
        return StoreOutcome::NoImage;
    }
    const QByteArray wanted = formatOf(target);
    // There are formats that can be read but not written; such an image stays what it is.
    const bool asItIs = format == wanted && !QImageWriter::supportedImageFormats().contains(wanted);
    const QString error = asItIs ? QString() : saveImage(image, &reader, target);
    if (asItIs ? writeBytes(target, bytes) : error.isEmpty()) {
        qDebug().noquote() << QStringLiteral("保存的照片路径：") << target;
        return StoreOutcome::Stored;
    }
    qDebug().noquote() << QStringLiteral("Failed to save image:") << target << error;
    return StoreOutcome::NotSaved;
}

FileOutcome madeFile(const QString &target)
{
    FileOutcome file;
    file.target = target;
    noteWritten(&file, FileOutcome::Kind::Made);
    return file;
}

} // namespace photowriting
