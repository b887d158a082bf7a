#include "pictures/picturereader.h"
#include "pictures/picturewriter.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"

#include <QBuffer>
#include <QColorSpace>
#include <QDataStream>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QtTest>

namespace {

using Problem = PictureReader::Problem;

QByteArray encoded(const QImage &picture, const char *format, bool progressive = false)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, format);
    writer.setProgressiveScanWrite(progressive);
    writer.write(picture);
    return bytes;
}

/// One red pixel, as there is no writer for this kind.
QByteArray gif()
{
    return QByteArray::fromHex("474946383961"
                               "01000100"
                               "800000"
                               "ff0000"
                               "000000"
                               "21f9040000000000"
                               "2c0000000001000100"
                               "00"
                               "02"
                               "02"
                               "4401"
                               "00"
                               "3b");
}

QByteArray bytesOf(quint32 value, QDataStream::ByteOrder order = QDataStream::BigEndian)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(order);
    stream << value;
    return bytes;
}

quint32 crc32(const QByteArray &bytes)
{
    quint32 crc = ~0U;
    for (const char byte : bytes) {
        crc ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xedb88320U : 0);
    }
    return ~crc;
}

/// The PNG as one that claims another size than its own.
QByteArray pngClaiming(QByteArray png, int width, int height)
{
    png.replace(16, 4, bytesOf(quint32(width))).replace(20, 4, bytesOf(quint32(height)));
    return png.replace(29, 4, bytesOf(crc32(png.mid(12, 17))));
}

QByteArray bmpClaiming(QByteArray bmp, int width, int height)
{
    return bmp.replace(18, 4, bytesOf(quint32(width), QDataStream::LittleEndian))
        .replace(22, 4, bytesOf(quint32(height), QDataStream::LittleEndian));
}

/// A head that says what it is for, and enough bytes to need \a size.
QByteArray profileFor(const char *colours, int size = 200)
{
    QByteArray profile(size, 'x');
    profile.replace(0, 4, bytesOf(quint32(size)));
    return profile.replace(16, 4, colours).replace(36, 4, "acsp");
}

/// A JPEG in four inks, all of them half on, with the tables of \a gray.
QByteArray inksOf(const QByteArray &gray, const QSize &size)
{
    const int frame = gray.indexOf("\xff\xc0");
    const int frameEnd = gray.indexOf("\xff\xc4", frame);
    const int scan = gray.indexOf("\xff\xda", frameEnd);
    QByteArray head("\xff\xc0\x00\x14", 4);
    head += gray.mid(frame + 4, 5) + '\x04';
    QByteArray order("\xff\xda\x00\x0e\x04", 5);
    for (const char ink : {'C', 'M', 'Y', 'K'}) {
        head += QByteArray(1, ink) + QByteArray("\x11\x00", 2);
        order += QByteArray(1, ink) + QByteArray("\x00", 1);
    }
    order += QByteArray("\x00\x3f\x00", 3);
    // Per block: no difference, end.
    const QByteArray fourBlocks("\x28\xa2\x8a");
    return gray.left(frame) + head + gray.mid(frameEnd, scan - frameEnd) + order +
           fourBlocks.repeated(size.width() * size.height() / 64) + "\xff\xd9";
}

/// A camera's block: a directory of the picture, one of the exposure, a linked preview. As the
/// camera writes it, or as it is to be for a picture that was turned and has 400 times 600 pixels.
class CameraBlock
{
public:
    CameraBlock(bool isBig, bool isUpright) : isBig_(isBig)
    {
        bytes_ = isBig ? "MM" : "II";
        add16(42);
        add32(8);
        add16(3);
        entry(0x0112, 3, isUpright ? 1 : 6);
        entry(0x013b, 2, 0x41424300); // the artist
        entry(0x8769, 4, 50);
        add32(isUpright ? 0 : 80); // the preview's directory
        add16(2);                  // at 50
        entry(0xa002, isUpright ? 4 : 3, isUpright ? 400 : 6000);
        entry(0xa003, 4, isUpright ? 600 : 4000);
        add32(0);
        add16(0); // at 80
        add32(0);
    }

    const QByteArray &bytes() const { return bytes_; }

private:
    void add16(int value) { add(value, 2); }
    void add32(int value) { add(value, 4); }
    void add(int value, int count)
    {
        for (int at = 0; at < count; ++at)
            bytes_ += char(value >> 8 * (isBig_ ? count - 1 - at : at));
    }
    void entry(int tag, int type, int value)
    {
        add16(tag);
        add16(type);
        add32(type == 2 ? 4 : 1);
        if (type == 3) {
            add16(value);
            add16(0);
        } else {
            add32(value);
        }
    }

    const bool isBig_;
    QByteArray bytes_;
};

} // namespace

Q_DECLARE_METATYPE(PictureReader::Problem)

class TestPictures : public QObject
{
    Q_OBJECT

private slots:
    void wholeness_data()
    {
        addColumns<QByteArray, bool>({"bytes", "whole"});
        const QImage picture = cornerPicture({96, 64});
        const QByteArray jpeg = jpegOf(picture, 6);
        newRow("jpeg", jpeg, true);
        newRow("what the camera added", jpeg + "more", true);
        newRow("jpeg without its last byte", jpeg.left(jpeg.size() - 1), false);
        newRow("a jpeg's place taken, not filled",
               jpeg.left(jpeg.size() - 90) + QByteArray(90, '\0'), false);
        // The end of a preview inside a segment is not that of the picture.
        const QByteArray segment("\xff\xe1\x00\x06\xff\xd8\xff\xd9", 8);
        const QByteArray previewed = QByteArray(jpeg).insert(2, segment);
        newRow("preview", previewed, true);
        newRow("preview, cut", previewed.left(jpeg.size()), false);
        for (const char *format : {"png", "bmp"}) {
            const QByteArray bytes = encoded(picture, format);
            newRow(format, bytes, true);
            newRow(qPrintable(QLatin1String(format) + " cut"_s), bytes.left(bytes.size() - 30),
                   false);
        }
        newRow("gif", gif(), true);
        newRow("gif without a trailer", gif().left(gif().size() - 1), true);
        newRow("gif cut", gif().left(gif().size() - 3), false);
        newRow("nothing", QByteArray(), false);
        newRow("a drawing", QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9'/>"),
               false);
    }

    void wholeness()
    {
        QFETCH(QByteArray, bytes);
        PictureReader reader(bytes);
        const QImage picture = reader.readUpright();
        QTEST(!picture.isNull(), "whole");
        QCOMPARE(picture.isNull(), reader.problem() != Problem::None);
        QTemporaryDir folder;
        const QString path = writeFile(folder.filePath("a"_s), bytes);
        QCOMPARE(PictureReader(path, picturebounds::imported).read().isNull(), picture.isNull());
    }

    void bounds_data()
    {
        addColumns<QByteArray, int, Problem, Problem>({"bytes", "side", "shown", "imported"});
        const QImage colour = cornerPicture({96, 64});
        const QByteArray jpeg = jpegOf(colour);
        QByteArray held = encoded(colour, "jpeg", true).replace("\xff\xc2", "\xff\xc0");
        held = claiming(held, 13000, 10000).replace("\xff\xc0", "\xff\xc2");
        const QByteArray png = encoded(colour, "png");
        const QByteArray mono = encoded(colour.convertToFormat(QImage::Format_Mono), "png");
        const QByteArray bmp = encoded(colour, "bmp");
        const Problem large = Problem::TooLarge;
        const Problem none = Problem::None;
        newRow("jpeg of 100 MP", claiming(jpeg, 10000, 10000), 90, none, none);
        newRow("jpeg of 201 MP", claiming(jpeg, 20100, 10000), 90, large, none);
        newRow("jpeg of 64,000 squared", claiming(jpeg, 64000, 64000), 90, large, large);
        newRow("jpeg of 130 MP, unscaled", claiming(jpeg, 13000, 10000), 0, large, large);
        newRow("held jpeg of 130 MP", held, 90, large, large);
        newRow("png of 60,000 squared", pngClaiming(mono, 60000, 60000), 90, large, large);
        newRow("png of 130 MP in two tones", pngClaiming(mono, 13000, 10000), 90, large, large);
        // Within their bounds these are read, and found not to hold as much.
        newRow("png of 65 MP", pngClaiming(png, 6500, 10000), 90, large, Problem::NoPicture);
        newRow("png of 144 MP", pngClaiming(png, 12000, 12000), 90, large, Problem::NoPicture);
        newRow("png of 24,000 squared", pngClaiming(png, 24000, 24000), 90, large, large);
        newRow("bmp of 130 MP", bmpClaiming(bmp, 13000, 10000), 0, large, large);
        newRow("bmp that is too short", bmpClaiming(bmp, 4000, 4000), 0, Problem::Incomplete,
               Problem::Incomplete);
    }

    void bounds()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, side);
        for (const char *purpose : {"shown", "imported"}) {
            PictureReader reader(bytes,
                                 *purpose == 's' ? picturebounds::shown : picturebounds::imported);
            if (side > 0)
                reader.setScaledSize({side, side});
            const QImage picture = reader.read();
            QTEST(reader.problem(), purpose);
            QCOMPARE(picture.isNull(), reader.problem() != Problem::None);
        }
    }

    void cameraBlocks_data()
    {
        addColumns<bool>({"big"});
        newRow("big end first", true);
        newRow("little end first", false);
    }

    void cameraBlocks()
    {
        QFETCH(bool, big);
        const QByteArray block = CameraBlock(big, false).bytes();
        const QByteArray upright = CameraBlock(big, true).bytes();
        QCOMPARE(exifOfUpright(block, {400, 600}), upright);

        const QByteArray jpeg = withCameraData(jpegOf(cornerPicture({90, 60})), {upright, {}});
        PictureReader reader(jpeg);
        QCOMPARE(int(reader.transformation()), 0);
        QCOMPARE(reader.cameraData().exif, upright);
        const QByteArray before = withCameraData(jpegOf(cornerPicture({90, 60})), {block, {}});
        QCOMPARE(PictureReader(before).uprightSize(), QSize(60, 90));

        // Whatever the block says: nothing outside of it is touched, and no tag to turn survives.
        for (int at = 0; at < block.size(); ++at) {
            QVERIFY(exifOfUpright(block.left(at), {400, 600}).size() <= at);
            for (const char value : {'\0', '\x7f', '\xff'}) {
                QByteArray hostile = block;
                hostile[at] = value;
                const QByteArray patched = exifOfUpright(hostile, {400, 600});
                QVERIFY(patched.isEmpty() || patched.size() == block.size());
                const QByteArray whole =
                    withCameraData(jpegOf(cornerPicture({9, 6})), {patched, {}});
                QCOMPARE(int(PictureReader(whole).transformation()), 0);
            }
        }
    }

    void profiles_data()
    {
        addColumns<int, QByteArray, bool>({"components", "profile", "kept"});
        const QByteArray adobe = QColorSpace(QColorSpace::AdobeRgb).iccProfile();
        newRow("gray", 1, profileFor("GRAY"), true);
        newRow("gray, of several pieces", 1, profileFor("GRAY", 200000), true);
        newRow("gray, for colours", 1, profileFor("RGB "), false);
        newRow("gray, for known colours", 1, adobe, false);
        newRow("colours", 3, profileFor("RGB "), true);
        newRow("known colours", 3, adobe, true);
        newRow("colours, for gray", 3, profileFor("GRAY"), false);
        newRow("colours, for inks", 3, profileFor("CMYK"), false);
        newRow("cut", 3, profileFor("RGB ").left(150), false);
        newRow("inks", 4, profileFor("CMYK"), false); // become colours when they are read
    }

    void profiles()
    {
        QFETCH(int, components);
        QFETCH(QByteArray, profile);
        QFETCH(bool, kept);
        const QImage picture = cornerPicture({96, 64});
        const QImage gray = picture.convertToFormat(QImage::Format_Grayscale8);
        const QByteArray plain = components == 4 ? inksOf(jpegOf(gray), gray.size())
                                                 : jpegOf(components == 1 ? gray : picture);
        PictureReader source(withCameraData(plain, {{}, profile}));
        source.setScaledSize({48, 32});
        const QImage read = source.read();
        QVERIFY(!read.isNull());
        QTemporaryDir folder;
        for (const char *format : {"jpg", "png"}) {
            const QString path = folder.filePath("a"_s);
            QCOMPARE(writePicture(read, path, {format, 90, {}, {{}, source.cameraData().profile}}),
                     QString());
            PictureReader reader(path, picturebounds::imported);
            const QImage written = reader.read();
            QCOMPARE(written.format() == QImage::Format_Grayscale8, components == 1);
            if (*format == 'j')
                QCOMPARE(reader.cameraData().profile, kept ? profile : QByteArray());
            else // where only known ones can be kept
                QVERIFY(written.colorSpace().isValid() ||
                        written.colorSpace().iccProfile().isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(TestPictures)
#include "test_pictures.moc"
