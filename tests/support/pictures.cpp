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

QString corners(const QImage &picture)
{
    QString found;
    for (const int y : {1, picture.height() - 2}) {
        for (const int x : {1, picture.width() - 2}) {
            const QColor colour(picture.pixel(x, y));
            const auto stands = [](int one, int other, int third) {
                return one > other + 90 && one > third + 90;
            };
            found += stands(colour.red(), colour.green(), colour.blue())   ? QLatin1Char('R')
                     : stands(colour.green(), colour.red(), colour.blue()) ? QLatin1Char('G')
                     : stands(colour.blue(), colour.red(), colour.green()) ? QLatin1Char('B')
                                                                           : QLatin1Char('x');
        }
    }
    return found;
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

QByteArray claiming(QByteArray jpeg, int width, int height)
{
    const int frame = jpeg.indexOf("\xff\xc0");
    const QByteArray size{QByteArray(1, char(height >> 8)) + char(height) + char(width >> 8) +
                          char(width)};
    return jpeg.replace(frame + 5, size.size(), size);
}
