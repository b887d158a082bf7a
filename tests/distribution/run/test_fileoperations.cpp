#include "distribution/files/photowriting.h"
#include "distribution/plan/productfolders.h"
#include "distribution/run/fjdataoperate.h"
#include "distribution/run/fjdatathread.h"
#include "net/basereq.h"
#include "pictures/picturereader.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"

#include <QColorSpace>
#include <QDir>
#include <QImageReader>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <stdexcept>

Q_DECLARE_METATYPE(TaskType)
Q_DECLARE_METATYPE(PhotoRole)

namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class TestFileOperations : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        root_ = std::make_unique<QTemporaryDir>();
        writeFile(at("in/all/a.jpg"), "full");
        writeFile(at("in/90/a.jpg"), "small");
    }

    void cleanup()
    {
        QFile::setPermissions(at("out/成品/a.jpg"), QFile::ReadOwner | QFile::WriteOwner);
        QFile::setPermissions(at("out/a.jpg"), QFile::ReadOwner | QFile::WriteOwner);
        root_.reset();
    }

    void copies_data()
    {
        addColumns<TaskType, PhotoRole, QString, QByteArray>(
            {"type", "role", "expected", "content"});
        const auto row = [](TaskType type, PhotoRole role, const char *expected,
                            const QByteArray &content = "full") {
            QTest::addRow("%s %d", qPrintable(taskTypeText(type)), int(role))
                << type << role << s(expected) << content;
        };
        for (const TaskType type : {TaskType::DownloadRetouched, TaskType::DownloadOriginals,
                                    TaskType::DeliverOriginals, TaskType::DeliverPhotos})
            row(type, PhotoRole::Finished, "a.jpg");
        row(TaskType::CopyPhoto, PhotoRole::Retouched, "成品/a.jpg");
        row(TaskType::CopyPhoto, PhotoRole::Finished, "成品/a.jpg");
        row(TaskType::CopyPhoto, PhotoRole::Rejected, "汰片/a.jpg");
        row(TaskType::CopyPhoto, PhotoRole::Archive, "入底/a.jpg");
        row(TaskType::CopyPhoto, PhotoRole::Thumbnail, "缩略图/a.jpg", "small");
    }

    /// Whatever form the reply writes the path in.
    void copies()
    {
        QFETCH(TaskType, type);
        QFETCH(PhotoRole, role);
        QFETCH(QString, expected);
        QFETCH(QByteArray, content);
        const bool small = content == "small";
        const QString source = at(small ? "in/90/a.jpg" : "in/all/a.jpg");
        for (const auto &[from, to] : {std::pair{"/", "/"}, {"/", "\\/"}, {"/", "\\"}}) {
            QDir(at("out")).removeRecursively();
            DistributionTask each = task(type, role);
            each.sourcePath = QString(source).replace(s(from), s(to));
            const TaskResult result = FJDataOperate::perform(each);
            QVERIFY2(result.success, qPrintable(result.errmsg));
            QCOMPARE(result.type, type);
            QCOMPARE(result.imgData, "17"_s);
            QCOMPARE(result.copyFile, at("out/") + expected);
            QCOMPARE(filesBelow(at("out")), QStringList{expected});
            QCOMPARE(readFile(result.copyFile), content);
        }
        DistributionTask hostile = task(type, role);
        hostile.imgName = "../..\\b:.jpg"_s;
        QVERIFY(FJDataOperate::perform(hostile).success);
        QCOMPARE(filesBelow(at("out")).size(), 2);
    }

    void failures_data()
    {
        addColumns<TaskType, PhotoRole, QString, QString>({"type", "role", "missing", "failed"});
        const auto row = [](TaskType type, PhotoRole role, const QString &missing,
                            const QString &failed) {
            QTest::addRow("%s %d", qPrintable(taskTypeText(type)), int(role))
                << type << role << missing << failed;
        };
        for (const TaskType type : {TaskType::DownloadRetouched, TaskType::DownloadOriginals})
            row(type, PhotoRole::Finished, "照片不存在"_s, "复制失败"_s);
        for (const TaskType type : {TaskType::DeliverOriginals, TaskType::DeliverPhotos})
            row(type, PhotoRole::Finished, " 源文件不存在"_s, " 拷贝失败"_s);
        for (const PhotoRole role : {PhotoRole::Retouched, PhotoRole::Finished})
            row(TaskType::CopyPhoto, role, "照片不存在"_s, "照片复制失败"_s);
        for (const PhotoRole role : {PhotoRole::Rejected, PhotoRole::Archive})
            row(TaskType::CopyPhoto, role, "照片不存在"_s, QString());
        row(TaskType::CopyPhoto, PhotoRole::Thumbnail, "缩略图不存在"_s, QString());
    }

    void failures()
    {
        QFETCH(TaskType, type);
        QFETCH(PhotoRole, role);
        QFETCH(QString, missing);
        QFETCH(QString, failed);
        DistributionTask each = task(type, role);
        each.sourcePath = at("in/all/none.jpg");
        QCOMPARE(FJDataOperate::perform(each).errmsg, "a.jpg"_s + missing);
        each.sourcePath = QDir::current().relativeFilePath(at("in/all/a.jpg"));
        QVERIFY(FJDataOperate::perform(each).errmsg.startsWith("a.jpg的路径错误，"_s));
        QVERIFY(!QFileInfo::exists(at("out")));

        each.sourcePath = at("in/all/a.jpg");
        writeFile(at("out"), "a file");
        const TaskResult noFolder = FJDataOperate::perform(each);
        QCOMPARE(noFolder.errmsg, "a.jpg 路径创建失败/连接不上服务端"_s);
        QVERIFY(!noFolder.success);
        QCOMPARE(noFolder.imgData, "17"_s);
        QVERIFY(QFile::remove(at("out")));

        if (failed.isEmpty())
            return;
        const QString target = at(type == TaskType::CopyPhoto ? "out/成品/a.jpg" : "out/a.jpg");
        writeFile(target, "protected");
        QVERIFY(QFile::setPermissions(target, QFile::ReadOwner));
        QCOMPARE(FJDataOperate::perform(each).errmsg, "a.jpg"_s + failed);
        QCOMPARE(readFile(target), QByteArray("protected"));
        QCOMPARE(filesBelow(at("out")).size(), 1);
    }

    void thumbnailPaths()
    {
        for (const auto &[photo, thumbnail] :
             {std::pair{"D:\\o\\all\\a.jpg"_s, "D:\\o\\90\\a.jpg"_s},
              {"//s/all/a.jpg"_s, "//s/90/a.jpg"_s},
              {"/all/o/all/a.jpg"_s, "/all/o/90/a.jpg"_s},
              {"/o/a.jpg"_s, "/o/a.jpg"_s},
              {"/overall/a.jpg"_s, "/overall/a.jpg"_s}})
            QCOMPARE(photowriting::thumbnailOf(photo), thumbnail);
    }

    void finishedOnlyCopiesWhatItCan()
    {
        const DistributionTask both = task(TaskType::CopyPhoto, PhotoRole::FinishedOnly);
        QVERIFY(FJDataOperate::perform(both).success);
        QCOMPARE(filesBelow(at("out")), (QStringList{"成品/a.jpg"_s, "缩略图/a.jpg"_s}));
        QCOMPARE(readFile(at("out/缩略图/a.jpg")), QByteArray("small"));

        QDir(at("out")).removeRecursively();
        QVERIFY(QFile::remove(at("in/90/a.jpg")));
        QCOMPARE(FJDataOperate::perform(both).errmsg, "a.jpg缩略图不存在"_s);
        QCOMPARE(filesBelow(at("out")), QStringList{"成品/a.jpg"_s});

        QVERIFY(QFile::remove(at("in/all/a.jpg")));
        QCOMPARE(FJDataOperate::perform(both).errmsg, "a.jpg照片不存在\na.jpg缩略图不存在"_s);

        writeFile(at("in/all/a.jpg"), "full");
        writeFile(at("in/90/a.jpg"), "");
        QCOMPARE(FJDataOperate::perform(both).errmsg, "a.jpg缩略图复制失败"_s);
    }

    void upright_data()
    {
        addColumns<int, bool>({"orientation", "turned"});
        newRow("normal", 1, false);
        newRow("right", 6, true);
        newRow("mirrored", 2, true);
        newRow("no picture", 0, false);
        newRow("without pixels", -6, false);
        newRow("cut short", -8, false);
    }

    void upright()
    {
        QFETCH(int, orientation);
        QFETCH(bool, turned);
        QByteArray bytes = "no picture";
        QImage picture = cornerPicture(QSize(80, 40));
        picture.setColorSpace(QColorSpace::AdobeRgb);
        if (orientation != 0)
            bytes = jpegOf(picture, std::abs(orientation));
        if (orientation == -6)
            bytes.truncate(bytes.indexOf("\xff\xda") - 20);
        if (orientation == -8)
            bytes.chop(200);
        writeFile(at("in/all/a.jpg"), bytes);
        const TaskResult result = FJDataOperate::perform(task(TaskType::DeliverPhotos));
        QVERIFY2(result.success, qPrintable(result.errmsg));
        QCOMPARE(filesBelow(at("out")), QStringList{"a.jpg"_s});
        QCOMPARE(readFile(at("out/a.jpg")) == bytes, !turned);
        QCOMPARE(result.errmsg, orientation == -8 ? "a.jpg图片不完整，已原样拷贝"_s : QString());
        if (!turned)
            return;
        const CameraData before = PictureReader(bytes).cameraData();
        const CameraData after = PictureReader(readFile(at("out/a.jpg"))).cameraData();
        QCOMPARE(after.profile, before.profile);
        QVERIFY(!after.profile.isEmpty());
        QImageReader reader(at("out/a.jpg"));
        QCOMPARE(reader.format(), QByteArray("jpeg"));
        QCOMPARE(reader.transformation(), QImageIOHandler::TransformationNone);
        const QImage image = reader.read();
        QCOMPARE(image.size(), orientation == 6 ? QSize(40, 80) : QSize(80, 40));
        QCOMPARE(after.exif, exifOfUpright(before.exif, image.size()));
        // What was top left goes to the top right in both.
        QVERIFY(qRed(image.pixel(image.width() - 4, 4)) > 200);
        QVERIFY(qGreen(image.pixel(image.width() - 4, 4)) < 60);
    }

    void ontoItself()
    {
        const QByteArray bytes = jpegOf(cornerPicture(QSize(80, 40)), 6);
        writeFile(at("in/all/a.jpg"), bytes);
        QVERIFY(linkFolder(at("in"), at("linked")));
        for (const TaskType type :
             {TaskType::DeliverOriginals, TaskType::DeliverPhotos, TaskType::DownloadOriginals}) {
            DistributionTask each = task(type);
            each.targetFolder = at("linked/all");
            const TaskResult result = FJDataOperate::perform(each);
            QVERIFY(result.success);
            QCOMPARE(result.errmsg, "a.jpg目标就是源文件，已跳过"_s);
            QCOMPARE(readFile(at("in/all/a.jpg")), bytes);
        }
    }

    void storedImages_data()
    {
        addColumns<QString, QString, QString, QByteArray>({"name", "data", "error", "format"});
        const QString good = imageDataUrl(jpegOf(cornerPicture(QSize(40, 20))), QString());
        newRow("jpg", "条形码.jpg"_s, good, QString(), QByteArray("jpeg"));
        newRow("png", "x.PNG"_s, good, QString(), QByteArray("png"));
        newRow("bmp", "x.bmp"_s, good, QString(), QByteArray("bmp"));
        newRow("turned", "x.jpg"_s,
               imageDataUrl(jpegOf(cornerPicture(QSize(20, 40)), 6), QString()), QString(),
               QByteArray("jpeg"));
        newRow("half an image", "x.jpg"_s,
               imageDataUrl(jpegOf(cornerPicture(QSize(40, 20))).chopped(200), QString()),
               "x.jpg无法从数据创建图像"_s, QByteArray());
        newRow("no image", "x.jpg"_s, "data:image/png;base64,AAAA"_s, "x.jpg无法从数据创建图像"_s,
               QByteArray());
        newRow("no data URL", "x.jpg"_s, QString(good).replace("data:"_s, "date:"_s),
               "x.jpg无法从数据创建图像"_s, QByteArray());
        newRow("not Base64", "x.jpg"_s, QString(good).replace("base64,"_s, "base32,"_s),
               "x.jpg无法从数据创建图像"_s, QByteArray());
        newRow("nothing", "x.jpg"_s, QString(), "x.jpg文件不存在"_s, QByteArray());
        newRow("no such format", "x.txt"_s, good, "保存文件失败：%1/x.txt"_s, QByteArray());
    }

    void storedImages()
    {
        QFETCH(QString, name);
        QFETCH(QString, data);
        QFETCH(QString, error);
        QFETCH(QByteArray, format);
        DistributionTask store = task(TaskType::StorePhoto);
        store.sourcePath.clear();
        store.imgName = name;
        store.data = data;
        const TaskResult result = FJDataOperate::perform(store);
        QCOMPARE(result.errmsg, error.contains("%1"_s) ? error.arg(at("out")) : error);
        QCOMPARE(result.success, error.isEmpty());
        QCOMPARE(filesBelow(at("out")), error.isEmpty() ? QStringList{name} : QStringList());
        if (!error.isEmpty())
            return;
        QImageReader reader(at("out/") + name);
        reader.setDecideFormatFromContent(true);
        QCOMPARE(reader.format(), format);
        QCOMPARE(reader.read().size(), QSize(40, 20));
    }

    void storedText()
    {
        DistributionTask store = task(TaskType::StorePhoto);
        store.stored = StoredImage::Delivery;
        store.imgName = "快递信息.txt"_s;
        store.data = "王丽\n8 号"_s;
        // As a pattern: a plain text would go through the system's code page.
        const QString message = "文件保存成功: "_s + at("out/快递信息.txt");
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QRegularExpression::anchoredPattern(
                                             QRegularExpression::escape(message))));
        QVERIFY(FJDataOperate::perform(store).success);
        QFile file(at("out/快递信息.txt"));
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        QCOMPARE(QString::fromUtf8(file.readAll()), store.data);
    }

    void productFolders();
    void productFolderThatCannotBeMade();

    void productsOfAStoppedRun()
    {
        OrderDetail detail;
        DetailProduct product;
        product.imgs = {photo("a.jpg", "in/all/a.jpg"), photo("b.jpg", "in/90/a.jpg")};
        detail.goods = {product};
        QCOMPARE(createProductFolders(detail, QString(), at("out"), [] { return true; }),
                 QStringList{"已停止，2张产品照片未拷贝"_s});
        QVERIFY(filesBelow(at("out")).isEmpty());
        product.imgs.removeLast();
        detail.goods = {product, product};
        const QStringList errors =
            createProductFolders(detail, QString(), at("out"), []() -> bool { throw 7; });
        QCOMPARE(errors.size(), 2);
        for (const QString &error : errors)
            QVERIFY2(error.startsWith("a.jpg拷贝失败（"_s) && error.contains("未知异常"_s),
                     qUtf8Printable(error));
    }

    /// Each task reports once, whatever becomes of it.
    void endings()
    {
        StopFlag stop;
        QVector<std::optional<TaskResult>> reports;
        const auto run = [&](const PerformTask &perform) {
            FJDataThread thread(task(TaskType::CopyPhoto), stop, perform);
            thread.run();
            reports.append(thread.result());
        };
        run(&FJDataOperate::perform);
        run([](const DistributionTask &) -> TaskResult { throw std::runtime_error("oh"); });
        run([](const DistributionTask &) -> TaskResult { throw 7; });
        stop.raise();
        run(&FJDataOperate::perform);
        QCOMPARE(reports.size(), 4);
        QVERIFY(reports.at(0)->success);
        QCOMPARE(reports.at(1)->errmsg, "a.jpg处理异常: oh"_s);
        QCOMPARE(reports.at(1)->imgData, "17"_s);
        QCOMPARE(reports.at(2)->errmsg, "a.jpg未知异常"_s);
        QVERIFY(!reports.at(3));
    }

private:
    QString at(const char *path) const { return root_->filePath(s(path)); }

    DistributionTask task(TaskType type, PhotoRole role = PhotoRole::Finished) const
    {
        DistributionTask made;
        made.type = type;
        made.role = role;
        made.sourcePath = at("in/all/a.jpg");
        made.targetFolder = at("out");
        made.imgName = "a.jpg"_s;
        made.imageId = "17"_s;
        return made;
    }

    DetailPhoto photo(const char *name, const char *path) const
    {
        DetailPhoto made;
        made.imgName = s(name);
        made.picPath = at(path);
        return made;
    }

    std::unique_ptr<QTemporaryDir> root_;
};

void TestFileOperations::productFolders()
{
    writeFile(at("in/b/a.jpg"), "other a");
    auto detail = std::make_shared<OrderDetail>();
    detail->order.insert("factoryname"_s, "厂"_s);
    DetailProduct product;
    product.goodName = "册/.."_s;
    product.imgs = {photo("a.jpg", "in/all/a.jpg"), photo("a.jpg", "in/all/a.jpg"),
                    photo("A.jpg", "in/b/a.jpg"), photo("lost.jpg", "in/all/lost.jpg")};
    const QString astray = "z/a.jpg"_s;
    DetailProduct set;
    set.goodName = "套"_s;
    set.isUrgent = "0"_s;
    DetailProduct part;
    part.imgs = {photo("p.jpg", "in/90/a.jpg")};
    set.sonGood = {part};
    detail->urgentGoods = {set};
    detail->goods = {product, product};
    product.imgs.last().picPath = astray;
    detail->goods.last().imgs.append(product.imgs.last());
    DistributionTask create = task(TaskType::CreateProducts);
    create.detail = detail;
    create.namingRule = s(R"([{"name":"","key":"name","separator":""}])");
    for (int run = 0; run < 2; ++run) { // the second meets the same folders
        const TaskResult result = FJDataOperate::perform(create);
        QVERIFY(!result.success);
        QCOMPARE(result.errmsg,
                 "lost.jpg拷贝失败（册_，照片不存在）\nlost.jpg拷贝失败（册_ (2)，照片不存在）\n"
                 "lost.jpg的路径错误，不是完整的路径: %1（册_ (2)）"_s.arg(astray));
        QCOMPARE(
            filesBelow(at("out")),
            (QStringList{"厂 - 取/册_ (2)/A (2).jpg"_s, "厂 - 取/册_ (2)/a.jpg"_s,
                         "厂 - 取/册_/A (2).jpg"_s, "厂 - 取/册_/a.jpg"_s, "厂 - 取/套/p.jpg"_s}));
    }
    QCOMPARE(readFile(at("out/厂 - 取/册_/A (2).jpg")), QByteArray("other a"));
    QCOMPARE(readFile(at("out/厂 - 取/套/p.jpg")), QByteArray("small"));
    QVERIFY(QFileInfo(at("out/其他/成品")).isDir());
    QCOMPARE(productFolderPaths(*detail, create.namingRule, at("out")).constLast(),
             at("out/厂 - 取/册_ (2)"));

    create.namingRule = "no rule"_s;
    FJDataOperate::perform(create);
    QCOMPARE(readFile(at("out/厂 - 取/1#- 套   - 取/p.jpg")), QByteArray("small"));
}

void TestFileOperations::productFolderThatCannotBeMade()
{
    auto detail = std::make_shared<OrderDetail>();
    DetailProduct one;
    one.goodName = "一"_s;
    DetailProduct two = one;
    two.goodName = "二"_s;
    two.imgs = {photo("a.jpg", "in/all/a.jpg")};
    detail->goods = {one, two};
    const QString rule = s(R"([{"key":"name","separator":""}])");
    const QString inTheWay = productFolderPaths(*detail, rule, at("out")).constFirst();
    writeFile(inTheWay, "a file");
    QCOMPARE(createProductFolders(*detail, rule, at("out")),
             QStringList{"一 路径创建失败/连接不上服务端"_s});
    QCOMPARE(filesBelow(at("out")).size(), 2);

    QDir(at("out")).removeRecursively();
    writeFile(at("out"), "a file");
    const QStringList errors = createProductFolders(*detail, rule, at("out"));
    QCOMPARE(errors.size(), 1);
    QVERIFY(errors.first().endsWith(" 路径创建失败/连接不上服务端"_s));
}

QTEST_MAIN(TestFileOperations)
#include "test_fileoperations.moc"
