#include "pictures/pictureio.h"

#include "files/filewriting.h"
#include "pictures/jpegend.h"

#include <QBuffer>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QImageIOHandler>
#include <QImageReader>
#include <QImageWriter>

#include <algorithm>
#include <mutex>

namespace pictureio {

void log(const QString &line)
{
    qDebug().noquote() << line;
}

void log(const QString &line, const QString &path)
{
    qDebug().noquote() << line << path;
}

qint64 pixelsOf(const QSize &size)
{
    return qint64(size.width()) * size.height();
}

int longSideOf(const QSize &size)
{
    return std::max(size.width(), size.height());
}

QSize withLongSide(const QSize &size, int side)
{
    if (size.height() >= size.width())
        return {int(qint64(side) * size.width() / size.height()), side};
    return {side, int(qint64(side) * size.height() / size.width())};
}

QImage readWithin(QImageReader &reader, const QSize &size)
{
    if (pixelsOf(size) > decodablePixels)
        return {};
    if (reader.format() == "jpeg" && !jpegReachesItsEnd(reader.fileName()))
        return {};
    const bool readsReduced = reader.supportsOption(QImageIOHandler::ScaledSize);
    if (pixelsOf(size) <= freelyReadPixels || readsReduced)
        return reader.read();
    if (pixelsOf(size) > wholeReadPixels)
        return {};
    static std::mutex oneAtATime;
    const std::lock_guard<std::mutex> lock(oneAtATime);
    return reader.read();
}

QString savePicture(const QImage &image, const QString &target, const QString &format, int quality,
                    const QDateTime &made)
{
    // Encoded in memory, so that a full disk cannot pass unnoticed inside the encoder.
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format.toLatin1());
    if (quality >= 0)
        writer.setQuality(quality);
    if (!writer.write(image))
        return writer.errorString();
    QString error = QStringLiteral("无法写入目标文件夹");
    const bool written = writeWholeFile(target, [&](const QString &temporary) {
        QFile file(temporary);
        const bool whole =
            file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
        if (!whole)
            error = file.errorString();
        else if (made.isValid())
            file.setFileTime(made, QFileDevice::FileModificationTime);
        return whole;
    });
    return written ? QString() : error;
}

} // namespace pictureio
