#include "photoimport/run/imagesteps.h"

#include "photoimport/rules/photoimportrecords.h"

#include <QDebug>

#include <algorithm>

namespace imageoperations {

void log(const QString &line)
{
    qDebug().noquote() << line;
}

void log(const QString &line, const QString &path)
{
    qDebug().noquote() << line << path;
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

QString suffixOf(const QString &path)
{
    return QFileInfo(path).suffix().toLower();
}

bool failed(JobFailure *failure, const QString &reason)
{
    if (failure)
        failure->reason = reason;
    return false;
}

QString notReplacedText()
{
    return QStringLiteral("无法删除旧文件");
}

QImage scaled(const QImage &image, const QSize &size)
{
    QImage result = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (image.format() == QImage::Format_Grayscale8)
        result = result.convertToFormat(image.format()); // which scaling loses
    return result;
}

} // namespace imageoperations
