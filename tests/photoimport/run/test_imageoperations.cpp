#include "files/contenthash.h"
#include "files/filewriting.h"
#include "photoimport/imported/tfthumbnailthread.h"
#include "photoimport/rules/photoimportrecords.h"
#include "photoimport/run/decodedsources.h"
#include "photoimport/run/imageoperations.h"
#include "photoimport/run/sizevariants.h"
#include "pictures/cameradata.h"
#include "pictures/picturereader.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/loglines.h"
#include "tests/support/pictures.h"
#include "tests/support/smalldisk.h"
#include "tests/support/text.h"

#include <QColorSpace>
#include <QDir>
#include <QImageReader>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <future>
#include <stdexcept>
#include <vector>

using namespace imageoperations;

namespace {

CameraData cameraDataOf(const QString &path)
{
    return PictureReader(path, picturebounds::imported).cameraData();
}

QByteArray grayJpeg(const QSize &size, int orientation)
{
    QImage picture(size, QImage::Format_Grayscale8);
    picture.fill(Qt::gray);
    return jpegOf(picture, orientation, 50);
}

} // namespace

class TestImageOperations : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        log_ = std::make_unique<LogLines>();
    }

    void cleanup()
    {
        log_.reset();
        QCOMPARE(filesBelow(folder_->path()).filter(".part"_s), QStringList());
    }

    void orientations_data()
    {
        // reported: folded; upright: what lands in "all", and thumbnails
        addColumns<int, QString, QString>({"reported", "upright", "variant"});
        newRow("1", 1, "RGBx", "RGBx");
        newRow("2", 3, "GRxB", "xBGR");
        newRow("3", 3, "xBGR", "xBGR");
        newRow("4", 3, "BxRG", "xBGR");
        newRow("5", 6, "RBGx", "GxRB");
        newRow("6", 6, "BRxG", "GxRB");
        newRow("7", 6, "xGBR", "GxRB");
        newRow("8", 6, "GxRB", "GxRB");
    }

    void orientations()
    {
        const int orientation = QByteArray(QTest::currentDataTag()).toInt();
        QImage picture = cornerPicture({96, 64});
        picture.setColorSpace(QColorSpace::AdobeRgb);
        const QByteArray camera = jpegOf(picture, orientation);
        const QString source = write("camera.JPG"_s, camera);
        const QDateTime shot(QDate(2024, 3, 7), QTime(9, 30));
        QFile file(source);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(shot, QFileDevice::FileModificationTime));
        file.close();
        QTEST(readExifOrientation(source), "reported");

        const QString original = write("original.JPG"_s, "an earlier file");
        WrittenOriginal written;
        QVERIFY(copyOriginal(source, original, nullptr, &written));
        QCOMPARE(written.isUpright, orientation != 1);
        QCOMPARE(written.sourceHash, readContent(source).hash);
        QCOMPARE(written.targetHash, readContent(original).hash);
        QCOMPARE(written.bytes, QFileInfo(original).size());
        QCOMPARE(written.proof, orientation == 1 ? readContent(original).proof : Proof::Derived);
        QImageReader reader(original);
        QCOMPARE(int(reader.transformation()), 0);
        const QImage upright = reader.read();
        QCOMPARE(upright.size(), orientation < 5 ? QSize(96, 64) : QSize(64, 96));
        QTEST(corners(upright), "upright");
        QCOMPARE(QFileInfo(original).lastModified(), shot);
        if (orientation == 1)
            QCOMPARE(readFile(original), camera);
        else
            QCOMPARE(cameraDataOf(original).exif,
                     exifOfUpright(cameraDataOf(source).exif, upright.size()));

        const QString variant = write("variant.JPG"_s, "an earlier file");
        QVERIFY(compressImage(source, variant, 48));
        const QImage small(variant);
        QCOMPARE(small.size(), orientation < 5 ? QSize(48, 32) : QSize(32, 48));
        QTEST(corners(small), "variant");
        for (const QImage &made : {upright, small})
            QCOMPARE(made.colorSpace(), QImage(source).colorSpace());
        QVERIFY(small.colorSpace() != QColorSpace(QColorSpace::SRgb));
        for (const QString &made : {original, variant})
            QCOMPARE(cameraDataOf(made).profile, cameraDataOf(source).profile);
        QVERIFY(cameraDataOf(variant).exif.isEmpty());
        QCOMPARE(logged("缩小后检测到需要旋转，EXIF方向: "), orientation == 1 ? 0 : 1);
        QCOMPARE(logged("照片存在，先删除照片"), 1);

        const QImage thumbnail = tfthumbnailthread::thumbnailOf(source, 48);
        QCOMPARE(thumbnail.size(), small.size());
        QTEST(corners(thumbnail), "upright");
        // None is enlarged.
        QCOMPARE(tfthumbnailthread::thumbnailOf(source, 960).size(), upright.size());
    }

    void rotationTable()
    {
        const QImage picture = cornerPicture({96, 64});
        QStringList turned;
        for (int orientation = 0; orientation <= 9; ++orientation)
            turned << corners(rotateImageByExif(picture, orientation));
        QCOMPARE(turned.join(QLatin1Char(' ')),
                 "RGBx RGBx GRxB xBGR BxRG RBGx GxRB xGBR BRxG RGBx"_s);
        QCOMPARE(logged("未知的EXIF方向值: "), 2);
        QCOMPARE(logged("图片旋转成功，EXIF方向: 8, 原尺寸: 96x64, 新尺寸: 64x96"), 1);
        QVERIFY(rotateImageByExif(QImage(), 3).isNull());
        QCOMPARE(logged("传入的图片为空，无法旋转"), 1);
    }

    void intermediateSizes_data()
    {
        addColumns<QSize, int, QSize>({"original", "target", "size"});
        newRow("4t reaches", QSize(7680, 100), 1920, QSize(7680, 100));
        newRow("4t just short", QSize(7681, 7681), 1920, QSize(4096, 4096));
        newRow("wide", QSize(12000, 9000), 190, QSize(760, 570));
        newRow("tall", QSize(9000, 12000), 1920, QSize(3072, 4096));
        newRow("15000", QSize(15000, 3000), 1920, QSize(4096, 819));
        newRow("15001", QSize(15001, 3000), 1920, QSize(3072, 614));
        newRow("15001, small", QSize(15001, 3000), 90, QSize(270, 53));
        newRow("20000", QSize(20000, 10000), 1920, QSize(3072, 1536));
        newRow("20001", QSize(20001, 10000), 1920, QSize(2048, 1023));
        newRow("huge", QSize(60000, 60000), 600, QSize(1800, 1800));
    }

    void intermediateSizes()
    {
        QFETCH(QSize, original);
        QFETCH(int, target);
        QTEST(calculateIntermediateSize(original, target), "size");
        QCOMPARE(uprightSize({10000, 10000}), QSize(10000, 10000));
        QCOMPARE(uprightSize({10001, 10000}), QSize(8192, 8191));
    }

    void variantSizes_data()
    {
        // size: empty: refused
        addColumns<QSize, int, QSize>({"source", "target", "size"});
        newRow("enlarged", QSize(1000, 800), 1920, QSize(1920, 1536));
        newRow("near", QSize(1925, 1280), 1920, QSize(1925, 1280));
        newRow("9 px away", QSize(1929, 1000), 1920, QSize(1929, 1000));
        newRow("10 px away", QSize(1930, 965), 1920, QSize(1920, 960));
        newRow("9 px below", QSize(1000, 1911), 1920, QSize(1000, 1911));
        newRow("tall", QSize(800, 1000), 90, QSize(72, 90));
        newRow("square", QSize(300, 300), 190, QSize(190, 190));
        newRow("10000 px, whole", QSize(10000, 100), 2000, QSize(2000, 20));
        newRow("10001 px, reduced", QSize(10001, 1000), 90, QSize(90, 8));
        newRow("panorama", QSize(12000, 1600), 190, QSize(190, 25));
        newRow("no size", QSize(100, 100), 0, QSize());
        newRow("absurd size", QSize(100, 100), 1000000, QSize());
    }

    void variantSizes()
    {
        QFETCH(QSize, source);
        QFETCH(int, target);
        QFETCH(QSize, size);
        const QString from = write("a.jpg"_s, grayJpeg(source, 1));
        const QString to = path("b.jpg"_s);
        QCOMPARE(compressImage(from, to, target), !size.isEmpty());
        QCOMPARE(QImage(to).size(), size.isEmpty() ? QImage().size() : size);
        QCOMPARE(logged("当前尺寸已接近目标尺寸，跳过缩放"), int(size == source));
        QCOMPARE(logged("检测到超大图片 ("), int(source.width() > 10000));
        const QSize between = calculateIntermediateSize(source, target);
        const QString read =
            "渐进式缩放成功，中间尺寸: %1x%2"_s.arg(between.width()).arg(between.height());
        QCOMPARE(logged(qUtf8Printable(read)), int(source.width() > 10000));
    }

    void thresholds_data()
    {
        // bytes: of the file, with a hole behind the picture; 0: as many as it has
        addColumns<QSize, int, qint64, QString, QString, QSize>(
            {"source", "orientation", "bytes", "large", "scaled", "size"});
        const QSize small(96, 64);
        const QSize turned(64, 96);
        const QString whole;
        const QString reduced = "超大图片旋转拷贝处理 (96x64, 0.0MP)"_s;
        newRow("30 MB", small, 6, qint64(31457280), whole, whole, turned);
        newRow("30 MB and a byte", small, 6, qint64(31457281), reduced, whole, turned);
        newRow("100 MB", small, 6, qint64(104857600), reduced, whole, turned);
        newRow("100 MB and a byte", small, 6, qint64(104857601), whole, whole, small);
        newRow("24 MP in 40 MB", QSize(6000, 4000), 3, qint64(40000000),
               "超大图片旋转拷贝处理 (6000x4000, 24.0MP)", "缩放回目标尺寸: 4096x2730 -> 6000x4000",
               QSize(6000, 4000));
        newRow("50 MP", QSize(10000, 5000), 3, qint64(0), whole, whole, QSize(10000, 5000));
        newRow("50 MP and a line", QSize(10000, 5001), 6, qint64(0),
               "超大图片旋转拷贝处理 (10000x5001, 50.0MP)",
               "缩放回目标尺寸: 2048x4096 -> 5001x10000", QSize(5001, 10000));
        newRow("108 MP", QSize(12000, 9000), 3, qint64(0),
               "超大图片旋转拷贝处理 (12000x9000, 108.0MP)",
               "缩放回目标尺寸: 4096x3072 -> 8192x6144", QSize(8192, 6144));
    }

    void thresholds()
    {
        QFETCH(QSize, source);
        QFETCH(int, orientation);
        QFETCH(qint64, bytes);
        QFETCH(QString, large);
        QFETCH(QString, scaled);
        const QString from = write("a.jpg"_s, grayJpeg(source, orientation));
        QVERIFY(bytes == 0 || QFile::resize(from, bytes));
        const QString to = path("b.jpg"_s);
        QVERIFY(copyOriginal(from, to));
        for (const auto &[line, all] :
             {std::pair(large, "超大图片旋转拷贝处理"), {scaled, "缩放回目标尺寸"}}) {
            QCOMPARE(logged(all), int(!line.isEmpty()));
            QCOMPARE(line.isEmpty() || log_->count(line) == 1, true);
        }
        QTEST(QImageReader(to).size(), "size");
        const bool copied = bytes > plainCopyBytes;
        QCOMPARE(logged("文件过大 (100MB)，使用直接拷贝: "), int(copied));
        QCOMPARE(QFileInfo(to).size() == bytes, copied);
        QCOMPARE(readExifOrientation(to), copied ? orientation : 1);
        QVERIFY(compressImage(from, path("c.jpg"_s), 90));
        QCOMPARE(logged("检测到超大图片"), int(bytes == 0 && !large.isEmpty()));
    }

    void damagedSources_data()
    {
        // line: of the variant
        addColumns<QString, QByteArray, QString>({"name", "bytes", "line"});
        const QByteArray turned = jpegOf(cornerPicture({960, 640}), 6);
        const QString jpg = "a.jpg"_s;
        newRow("cut short", jpg, turned.left(turned.size() - 400), "图片读取失败:");
        newRow("head only", jpg, turned.left(40), "无法");
        newRow("raw", "a.CR2", QByteArray("not a picture"), "无法读取图片:");
        newRow("no picture", jpg, QByteArray("not a picture"), "无法读取图片:");
        newRow("claims 3.6 GP", jpg, claiming(turned, 60000, 60000), "保守模式读取仍然失败:");
        newRow("of a kind that is only read whole", "a.ppm",
               QByteArray("P6\n12000 12000\n255\nxxxxxx"), "保守模式读取仍然失败:");
    }

    void damagedSources()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, line);
        const QString source = write(name, bytes);
        const QString original = path("original"_s);
        QVERIFY(copyOriginal(source, original));
        QCOMPARE(readFile(original), bytes);
        QVERIFY(rotateCopyImage(source, original));
        QCOMPARE(readFile(original), bytes);
        QCOMPARE(log_->all().filter(QRegularExpression("回退到直接拷贝|进行旋转拷贝:"_s)).isEmpty(),
                 false);

        const QString variant = write("variant"_s, "an earlier file");
        JobFailure failure;
        QVERIFY(!compressImage(source, variant, 90, nullptr, &failure));
        QVERIFY(!failure.reason.isEmpty());
        QCOMPARE(failure.hopeless, name == "a.CR2"_s);
        QCOMPARE(readFile(variant), QByteArray("an earlier file"));
        QVERIFY(log_->count(line) > 0);
        // What there is of a photo cut short can be shown.
        QCOMPARE(tfthumbnailthread::thumbnailOf(source, 90).isNull(),
                 qstrcmp(QTest::currentDataTag(), "cut short") != 0);
    }

    void targetsThatMayNotBeReplaced()
    {
        const QByteArray camera = jpegOf(cornerPicture({96, 64}), 6);
        const QString source = write("a.jpg"_s, camera);
        QVERIFY(copyOriginal(source, source)); // is in its place already
        QVERIFY(!compressImage(source, source, 90));
        QVERIFY(QDir().mkdir(path("real"_s)) && linkFolder(path("real"_s), path("linked"_s)));
        const QString behindLink = write("real/a.jpg"_s, camera);
        QVERIFY(copyOriginal(path("linked/a.jpg"_s), behindLink));
        for (const QString &untouched : {source, behindLink})
            QCOMPARE(readFile(untouched), camera);
        const QString target = write("protected.jpg"_s, "protected");
        QVERIFY(QFile::setPermissions(target, QFileDevice::ReadOwner));
        QVERIFY(!copyOriginal(source, target));
        QVERIFY(!rotateCopyImage(source, target));
        QVERIFY(!compressImage(source, target, 90));
        QCOMPARE(readFile(target), QByteArray("protected"));
        QVERIFY(!copyOriginal(path("missing"_s), target));
        QCOMPARE(logged("源文件不存在:"), 1);
    }

    void sourcesThatAreWrittenTo()
    {
        static QString source;
        source = write("a.jpg"_s, jpegOf(cornerPicture({96, 64}), 6));
        const QString target = write("b.jpg"_s, "an earlier file");
        log_.reset();
        const auto write = [](QtMsgType, const QMessageLogContext &, const QString &line) {
            QFile file(source);
            if (line.startsWith("开始旋转拷贝"_s) || line.startsWith("原图尺寸"_s))
                file.open(QIODevice::Append) && file.write("x");
        };
        const QtMessageHandler earlier = qInstallMessageHandler(write);
        JobFailure copy;
        JobFailure variant;
        const bool copied = copyOriginal(source, target, &copy);
        const QByteArray asCopied = readFile(source);
        const bool made = compressImage(source, path("90.jpg"_s), 90, nullptr, &variant);
        qInstallMessageHandler(earlier);
        QVERIFY(copied && !made); // the camera's bytes, as they are now
        QCOMPARE(readFile(target), asCopied);
        QCOMPARE(variant.reason, "文件在拷贝过程中发生变化"_s);
    }

    void fullDisk()
    {
        const SmallDisk disk(path("disk"_s), 1);
        if (!disk.isMounted())
            QSKIP("no rights to mount a file system");
        const QString source = write("a.jpg"_s, jpegOf(cornerPicture({960, 640}), 6));
        const QString target = write("disk/a.jpg"_s, "an earlier file");
        // All room but a page, then all of it.
        for (const int left : {4096, 0}) {
            QFile filler(path("disk/filler"_s));
            QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
            while (filler.write(QByteArray(4096, 'x')) == 4096) {
            }
            QVERIFY(filler.resize(filler.size() - left));
            filler.close();
            JobFailure copy;
            JobFailure variant;
            QVERIFY(!copyOriginal(source, target, &copy));
            QVERIFY(!compressImage(source, target, 900, nullptr, &variant));
            QCOMPARE(copy.reason, noRoomText());
            QCOMPARE(variant.reason, noRoomText());
            QCOMPARE(readFile(target), QByteArray("an earlier file"));
            QCOMPARE(QDir(path("disk"_s)).entryList(QDir::Files | QDir::Hidden).size(), 2);
        }
    }

    void sharedDecodingChangesNoPixel()
    {
        DecodedSources shared;
        const QString sources[] = {
            write("a.jpg"_s, jpegOf(cornerPicture({1200, 800}), 8)),
            write("b.jpg"_s, jpegOf(cornerPicture({12000, 700}), 1)),
        };
        for (const QString &source : sources) {
            std::vector<std::future<bool>> variants;
            for (const int size : {90, 190, 1920}) {
                const QString target = path(QString::number(size));
                variants.push_back(std::async(std::launch::async, compressImage, source, target,
                                              size, &shared, nullptr));
            }
            for (std::future<bool> &made : variants)
                QVERIFY(made.get());
            for (const int size : {90, 190, 1920}) {
                const QString alone = path("alone"_s);
                QVERIFY(compressImage(source, alone, size));
                QCOMPARE(QImage(path(QString::number(size))), QImage(alone));
            }
        }
        // Another picture under the same name is another source.
        write("a.jpg"_s, jpegOf(QImage(1200, 800, QImage::Format_RGB32), 1));
        QVERIFY(compressImage(sources[0], path("new"_s), 90, &shared));
        QCOMPARE(corners(QImage(path("new"_s))), "xxxx"_s);
    }

    void sourcesAreDecodedOnceAndTwoAreKept()
    {
        DecodedSources shared;
        std::atomic<int> decoded{0};
        const auto decode = [&decoded] {
            ++decoded;
            return cornerPicture({8, 8});
        };
        std::vector<std::future<QImage>> all;
        for (int reader = 0; reader < 8; ++reader) {
            all.push_back(
                std::async(std::launch::async, [&] { return shared.picture("a"_s, decode); }));
        }
        for (std::future<QImage> &image : all)
            QCOMPARE(image.get(), cornerPicture({8, 8}));
        QCOMPARE(decoded, 1);

        const auto decodes = [&](const char *key) {
            const int before = decoded;
            shared.picture(QLatin1String(key), decode);
            return decoded - before;
        };
        QCOMPARE(decodes("b"), 1);
        QCOMPARE(decodes("a"), 0);
        QCOMPARE(decodes("c"), 1); // pushes out b, which was used longest ago
        QCOMPARE(decodes("a"), 0);
        QCOMPARE(decodes("b"), 1);
        shared.clear();
        QCOMPARE(decodes("b"), 1);
        QVERIFY(shared.picture("d"_s, [] { return QImage(); }).isNull());
        QCOMPARE(decodes("d"), 1);
    }

    void aDecoderThatThrows()
    {
        DecodedSources shared;
        std::promise<void> begun;
        std::promise<void> mayThrow;
        auto first = std::async(std::launch::async, [&] {
            return shared.picture("a"_s, [&]() -> QImage {
                begun.set_value();
                mayThrow.get_future().wait();
                throw std::runtime_error("no memory");
            });
        });
        begun.get_future().wait();
        auto second = std::async(std::launch::async, [&] {
            return shared.picture("a"_s, [] { return cornerPicture({8, 8}); });
        });
        mayThrow.set_value();
        QVERIFY_EXCEPTION_THROWN(first.get(), std::runtime_error);
        QCOMPARE(second.get(), cornerPicture({8, 8}));
    }

private:
    QString path(const QString &name) const { return folder_->filePath(name); }

    QString write(const QString &name, const QByteArray &bytes) const
    {
        return writeFile(path(name), bytes);
    }

    int logged(const char *line) const { return log_->count(QString::fromUtf8(line)); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<LogLines> log_;
};

QTEST_GUILESS_MAIN(TestImageOperations)
#include "test_imageoperations.moc"
