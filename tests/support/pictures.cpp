#include "tests/support/pictures.h"

#include "demo/orientationtag.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>

QImage cornerPicture(const QSize &size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    const QSize corner = size / 4;
    QPainter painter(&picture);
    painter.fillRect(QRect(QPoint(0, 0), corner), Qt::red);
    painter.fillRect(QRect(QPoint(size.width() - corner.width(), 0), corner), Qt::green);
    painter.fillRect(QRect(QPoint(0, size.height() - corner.height()), corner), Qt::blue);
    return picture;
}

QByteArray jpegOf(const QImage &picture, int orientation, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(quality);
    if (!writer.write(picture))
        return QByteArray();
    return orientation == 1 ? bytes : demo::withOrientation(bytes, orientation);
}
