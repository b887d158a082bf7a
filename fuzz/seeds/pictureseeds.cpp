#include "fuzz/seeds/seeds.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>

namespace {

QByteArray written(const char *format, QImage::Format pixels = QImage::Format_RGB32,
                   bool progressive = false)
{
    QImage picture(24, 16, pixels);
    picture.fill(0x40);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    writer.setProgressiveScanWrite(progressive);
    writer.write(picture);
    return bytes;
}

/// A camera's block: an orientation, and below it when the picture was taken.
QByteArray cameraBlock(char orientation)
{
    QByteArray block("II*\0\x08\0\0\0\x02\0", 10);
    block += QByteArray("\x12\x01\x03\0\x01\0\0\0", 8) + orientation + QByteArray(3, '\0');
    block += QByteArray("\x69\x87\x04\0\x01\0\0\0\x26\0\0\0", 12) + QByteArray(4, '\0');
    block += QByteArray("\x01\0\x03\x90\x02\0\x14\0\0\0\x38\0\0\0", 14) + QByteArray(4, '\0');
    return block + QByteArray("2024:05:07 08:09:10\0", 20);
}

QByteArray withBlock(const QByteArray &jpeg, const QByteArray &block)
{
    const QByteArray content = QByteArray("Exif\0\0", 6) + block;
    const int length = content.size() + 2;
    return jpeg.left(2) + "\xff\xe1" + char(length >> 8) + char(length & 0xff) + content +
           jpeg.mid(2);
}

/// Of which not even the number of its bytes is one.
QByteArray bmpOfNoEnd()
{
    QByteArray head = QByteArray("BM") + QByteArray(32, '\0');
    head[14] = 40;
    return head.replace(18, 8, QByteArray("\xff\xff\xff\x7f\xff\xff\xff\x7f", 8))
        .replace(28, 2, QByteArray("\xff\xff", 2));
}

} // namespace

void addPictureSeeds(Seeds *seeds)
{
    const QByteArray jpeg = written("jpeg");
    const QMap<QString, QByteArray> files = {
        {QStringLiteral("jpeg"), jpeg},
        {QStringLiteral("jpeg-on-its-side"), withBlock(jpeg, cameraBlock(6))},
        {QStringLiteral("jpeg-grey"), written("jpeg", QImage::Format_Grayscale8)},
        {QStringLiteral("jpeg-progressive"), written("jpeg", QImage::Format_RGB32, true)},
        {QStringLiteral("jpeg-cut-short"), jpeg.left(jpeg.size() / 2)},
        {QStringLiteral("png"), written("png")},
        {QStringLiteral("png-with-few-colours"), written("png", QImage::Format_Mono)},
        {QStringLiteral("bmp"), written("bmp")},
        {QStringLiteral("bmp-of-no-end"), bmpOfNoEnd()},
        {QStringLiteral("gif"),
         QByteArray("GIF89a\x01\0\x01\0\x80\0\0\0\0\0\xff\xff\xff,\0\0\0\0\x01\0\x01\0\0\x02\x02D"
                    "\x01\0;",
                    35)},
    };
    QMap<QString, QByteArray> &heads = (*seeds)[QStringLiteral("pictureheads")];
    heads = files;
    heads[QStringLiteral("camera-block")] = cameraBlock(8);
    // The first byte says how they are read.
    QMap<QString, QByteArray> &pictures = (*seeds)[QStringLiteral("pictures")];
    for (auto file = files.cbegin(); file != files.cend(); ++file) {
        constexpr char ways = 16;
        for (char way = 0; way < ways; way = char(way + 3))
            pictures[file.key() + QString::number(way)] = way + *file;
    }
}
