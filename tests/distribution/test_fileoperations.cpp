#include "distribution/fjdataoperate.h"
#include "distribution/fjdatathread.h"
#include "distribution/photofiles.h"
#include "distribution/productfolders.h"
#include "net/basereq.h"
#include "tests/support/pictures.h"
#include "tests/support/smalldisk.h"

#include <QDir>
#include <QDirIterator>
#include <QImageReader>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <stdexcept>

namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

void write(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

/// Every file below \a folder, temporary ones included, with its path from there.
QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator each(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (each.hasNext())
        files.append(QDir(folder).relativeFilePath(each.next()));
    files.sort();
    return files;
}

} // namespace

class TestFileOperations : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void copies_data();
    void copies();
    void failures_data();
    void failures();
    void thumbnailPaths_data();
    void thumbnailPaths();
    void finishedOnlyCopiesWhatItCan();
    void upright_data();
    void upright();
    void storedImages_data();
    void storedImages();
    void storedText();
    void productFolders();
    void productFolderThatCannotBeMade();
    void productsOfAStoppedRun();
    void endings();
    void fullDisk();

private:
    QString at(const char *path) const { return root_->filePath(s(path)); }
    DistributionTask task(const char *type, const char *role = "") const;
    DetailPhoto photo(const char *name, const char *path) const;

    std::unique_ptr<QTemporaryDir> root_;
};

void TestFileOperations::init()
{
    root_ = std::make_unique<QTemporaryDir>();
    write(at("in/all/a.jpg"), "full");
    write(at("in/90/a.jpg"), "small");
}

void TestFileOperations::cleanup()
{
    QFile::setPermissions(at("out/成品/a.jpg"), QFile::ReadOwner | QFile::WriteOwner);
    QFile::setPermissions(at("out/a.jpg"), QFile::ReadOwner | QFile::WriteOwner);
    root_.reset();
}

DistributionTask TestFileOperations::task(const char *type, const char *role) const
{
    DistributionTask made;
    made.type = s(type);
    made.subType = s(role);
    made.sourcePath = at("in/all/a.jpg");
    made.targetFolder = at("out");
    made.imgName = s("a.jpg");
    made.imageId = s("17");
    return made;
}

DetailPhoto TestFileOperations::photo(const char *name, const char *path) const
{
    DetailPhoto made;
    made.imgName = s(name);
    made.picPath = at(path);
    return made;
}

void TestFileOperations::copies_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("role");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QByteArray>("content");
    const auto row = [](const char *type, const char *role, const char *expected,
                        const QByteArray &content = "full") {
        QTest::addRow("%s %s", type, role) << s(type) << s(role) << s(expected) << content;
    };
    row("下载精修片", "", "a.jpg");
    row("下载原始档", "", "a.jpg");
    row("下载照片交付-拷贝原始档", "", "a.jpg");
    row("下载照片交付-拷贝原片", "", "a.jpg");
    row("拷贝照片", "精修成品", "成品/a.jpg");
    row("拷贝照片", "成品", "成品/a.jpg");
    row("拷贝照片", "汰片", "汰片/a.jpg");
    row("拷贝照片", "入底", "入底/a.jpg");
    row("拷贝照片", "成品缩略图", "缩略图/a.jpg", "small");
}

/// Whatever form the reply writes the path in.
void TestFileOperations::copies()
{
    QFETCH(QString, type);
    QFETCH(QString, role);
    QFETCH(QString, expected);
    QFETCH(QByteArray, content);
    const bool small = content == "small";
    const QString source = at(small ? "in/90/a.jpg" : "in/all/a.jpg");
    for (const auto &[from, to] : {std::pair{"/", "/"}, {"/", "\\/"}, {"/", "\\"}}) {
        QDir(at("out")).removeRecursively();
        DistributionTask each = task("");
        each.type = type;
        each.subType = role;
        each.sourcePath = QString(source).replace(s(from), s(to));
        const TaskResult result = FJDataOperate::perform(each);
        QVERIFY2(result.success, qPrintable(result.errmsg));
        QCOMPARE(result.type, type);
        QCOMPARE(result.imgData, s("17"));
        QCOMPARE(result.copyFile, at("out/") + expected);
        QCOMPARE(filesBelow(at("out")), QStringList{expected});
        QCOMPARE(read(result.copyFile), content);
    }
    DistributionTask hostile = task("");
    hostile.type = type;
    hostile.subType = role;
    hostile.imgName = s("../..\\b:.jpg");
    QVERIFY(FJDataOperate::perform(hostile).success);
    QCOMPARE(filesBelow(at("out")).size(), 2);
}

void TestFileOperations::failures_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("role");
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QString>("failed");
    for (const char *type : {"下载精修片", "下载原始档"})
        QTest::newRow(type) << s(type) << QString() << s("照片不存在") << s("复制失败");
    for (const char *type : {"下载照片交付-拷贝原始档", "下载照片交付-拷贝原片"})
        QTest::newRow(type) << s(type) << QString() << s(" 源文件不存在") << s(" 拷贝失败");
    for (const char *role : {"精修成品", "成品"})
        QTest::newRow(role) << s("拷贝照片") << s(role) << s("照片不存在") << s("照片复制失败");
    for (const char *role : {"汰片", "入底"})
        QTest::newRow(role) << s("拷贝照片") << s(role) << s("照片不存在") << QString();
    QTest::newRow("thumbnail") << s("拷贝照片") << s("成品缩略图") << s("缩略图不存在")
                               << QString();
}

void TestFileOperations::failures()
{
    QFETCH(QString, type);
    QFETCH(QString, role);
    QFETCH(QString, missing);
    QFETCH(QString, failed);
    DistributionTask each = task("");
    each.type = type;
    each.subType = role;
    each.sourcePath = at("in/all/none.jpg");
    QCOMPARE(FJDataOperate::perform(each).errmsg, s("a.jpg") + missing);
    QVERIFY(!QFileInfo::exists(at("out")));

    each.sourcePath = at("in/all/a.jpg");
    write(at("out"), "a file");
    const TaskResult noFolder = FJDataOperate::perform(each);
    QCOMPARE(noFolder.errmsg, s("a.jpg 路径创建失败/连接不上服务端"));
    QVERIFY(!noFolder.success);
    QCOMPARE(noFolder.imgData, s("17"));
    QVERIFY(QFile::remove(at("out")));

    if (failed.isEmpty())
        return;
    const QString target = at(role.isEmpty() ? "out/a.jpg" : "out/成品/a.jpg");
    write(target, "protected");
    QVERIFY(QFile::setPermissions(target, QFile::ReadOwner));
    QCOMPARE(FJDataOperate::perform(each).errmsg, s("a.jpg") + failed);
    QCOMPARE(read(target), QByteArray("protected"));
    QCOMPARE(filesBelow(at("out")).size(), 1);
}

void TestFileOperations::thumbnailPaths_data()
{
    QTest::addColumn<QString>("expected");
    QTest::newRow("D:\\o\\all\\a.jpg") << s("D:\\o\\90\\a.jpg");
    QTest::newRow("//s/all/a.jpg") << s("//s/90/a.jpg");
    QTest::newRow("/all/o/all/a.jpg") << s("/all/o/90/a.jpg");
    QTest::newRow("/o/a.jpg") << s("/o/a.jpg");
    QTest::newRow("/overall/a.jpg") << s("/overall/a.jpg");
}

void TestFileOperations::thumbnailPaths()
{
    QFETCH(QString, expected);
    QCOMPARE(photofiles::thumbnailOf(s(QTest::currentDataTag())), expected);
}

void TestFileOperations::finishedOnlyCopiesWhatItCan()
{
    const DistributionTask both = task("拷贝照片", "只要成品");
    QVERIFY(FJDataOperate::perform(both).success);
    QCOMPARE(filesBelow(at("out")), (QStringList{s("成品/a.jpg"), s("缩略图/a.jpg")}));
    QCOMPARE(read(at("out/缩略图/a.jpg")), QByteArray("small"));

    QDir(at("out")).removeRecursively();
    QVERIFY(QFile::remove(at("in/90/a.jpg")));
    QCOMPARE(FJDataOperate::perform(both).errmsg, s("a.jpg缩略图不存在"));
    QCOMPARE(filesBelow(at("out")), QStringList{s("成品/a.jpg")});

    QVERIFY(QFile::remove(at("in/all/a.jpg")));
    QCOMPARE(FJDataOperate::perform(both).errmsg, s("a.jpg照片不存在\na.jpg缩略图不存在"));

    write(at("in/all/a.jpg"), "full");
    write(at("in/90/a.jpg"), "");
    QCOMPARE(FJDataOperate::perform(both).errmsg, s("a.jpg缩略图复制失败"));
}

void TestFileOperations::upright_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<bool>("turned");
    QTest::newRow("normal") << 1 << false;
    QTest::newRow("right") << 6 << true;
    QTest::newRow("mirrored") << 2 << true;
    QTest::newRow("no picture") << 0 << false;
    QTest::newRow("cut short") << -6 << false;
}

void TestFileOperations::upright()
{
    QFETCH(int, orientation);
    QFETCH(bool, turned);
    QByteArray bytes = "no picture";
    if (orientation != 0)
        bytes = jpegOf(cornerPicture(QSize(80, 40)), std::abs(orientation));
    if (orientation < 0)
        bytes.truncate(bytes.indexOf("\xff\xda") - 20);
    write(at("in/all/a.jpg"), bytes);
    const TaskResult result = FJDataOperate::perform(task("下载照片交付-拷贝原片"));
    QVERIFY2(result.success, qPrintable(result.errmsg));
    QCOMPARE(filesBelow(at("out")), QStringList{s("a.jpg")});
    QCOMPARE(read(at("out/a.jpg")) == bytes, !turned);
    if (!turned)
        return;
    QImageReader reader(at("out/a.jpg"));
    QCOMPARE(reader.format(), QByteArray("jpeg"));
    QCOMPARE(reader.transformation(), QImageIOHandler::TransformationNone);
    const QImage image = reader.read();
    QCOMPARE(image.size(), orientation == 6 ? QSize(40, 80) : QSize(80, 40));
    // What was top left goes to the top right in both.
    QVERIFY(qRed(image.pixel(image.width() - 4, 4)) > 200);
    QVERIFY(qGreen(image.pixel(image.width() - 4, 4)) < 60);
}

void TestFileOperations::storedImages_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QByteArray>("format");
    const QString good = imageDataUrl(jpegOf(cornerPicture(QSize(40, 20))), QString());
    QTest::newRow("jpg") << s("条形码.jpg") << good << QString() << QByteArray("jpeg");
    QTest::newRow("png") << s("x.PNG") << good << QString() << QByteArray("png");
    QTest::newRow("bmp") << s("x.bmp") << good << QString() << QByteArray("bmp");
    QTest::newRow("no image") << s("x.jpg") << s("data:image/png;base64,AAAA")
                              << s("x.jpg无法从数据创建图像") << QByteArray();
    QTest::newRow("no data URL") << s("x.jpg") << QString(good).replace(s("data:"), s("date:"))
                                 << s("x.jpg无法从数据创建图像") << QByteArray();
    QTest::newRow("not Base64") << s("x.jpg") << QString(good).replace(s("base64,"), s("base32,"))
                                << s("x.jpg无法从数据创建图像") << QByteArray();
    QTest::newRow("nothing") << s("x.jpg") << QString() << s("x.jpg文件不存在") << QByteArray();
    QTest::newRow("no such format")
        << s("x.none") << good << s("保存文件失败：%1/x.none") << QByteArray();
}

void TestFileOperations::storedImages()
{
    QFETCH(QString, name);
    QFETCH(QString, data);
    QFETCH(QString, error);
    QFETCH(QByteArray, format);
    DistributionTask store = task("存储照片");
    store.sourcePath.clear();
    store.imgName = name;
    store.data = data;
    const TaskResult result = FJDataOperate::perform(store);
    QCOMPARE(result.errmsg, error.contains(s("%1")) ? error.arg(at("out")) : error);
    QCOMPARE(result.success, error.isEmpty());
    QCOMPARE(filesBelow(at("out")), error.isEmpty() ? QStringList{name} : QStringList());
    if (!error.isEmpty())
        return;
    QImageReader reader(at("out/") + name);
    reader.setDecideFormatFromContent(true);
    QCOMPARE(reader.format(), format);
    QCOMPARE(reader.read().size(), QSize(40, 20));
}

void TestFileOperations::storedText()
{
    DistributionTask store = task("存储照片");
    store.imgName = s("快递信息.txt");
    store.data = s("王丽\n8 号");
    QTest::ignoreMessage(QtDebugMsg, qPrintable(s("文件保存成功: ") + at("out/快递信息.txt")));
    QVERIFY(FJDataOperate::perform(store).success);
    QFile file(at("out/快递信息.txt"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    QCOMPARE(QString::fromUtf8(file.readAll()), store.data);
}

void TestFileOperations::productFolders()
{
    write(at("in/b/a.jpg"), "other a");
    auto detail = std::make_shared<OrderDetail>();
    detail->order.insert(s("factoryname"), s("厂"));
    DetailProduct product;
    product.goodName = s("册/..");
    product.imgs = {photo("a.jpg", "in/all/a.jpg"), photo("a.jpg", "in/all/a.jpg"),
                    photo("A.jpg", "in/b/a.jpg"), photo("lost.jpg", "in/all/lost.jpg")};
    DetailProduct set;
    set.goodName = s("套");
    set.isUrgent = s("0");
    DetailProduct part;
    part.imgs = {photo("p.jpg", "in/90/a.jpg")};
    set.sonGood = {part};
    detail->urgentGoods = {set};
    detail->goods = {product, product};
    DistributionTask create = task("创建产品");
    create.detail = detail;
    create.namingRule = s(R"([{"name":"","key":"name","separator":""}])");
    for (int run = 0; run < 2; ++run) { // the second meets the same folders
        const TaskResult result = FJDataOperate::perform(create);
        QVERIFY(!result.success);
        QCOMPARE(result.errmsg,
                 s("lost.jpg拷贝失败（册_，照片不存在）\nlost.jpg拷贝失败（册_ (2)，照片不存在）"));
        QCOMPARE(filesBelow(at("out")),
                 (QStringList{s("厂 - 取/册_ (2)/A (2).jpg"), s("厂 - 取/册_ (2)/a.jpg"),
                              s("厂 - 取/册_/A (2).jpg"), s("厂 - 取/册_/a.jpg"),
                              s("厂 - 取/套/p.jpg")}));
    }
    QCOMPARE(read(at("out/厂 - 取/册_/A (2).jpg")), QByteArray("other a"));
    QCOMPARE(read(at("out/厂 - 取/套/p.jpg")), QByteArray("small"));
    QVERIFY(QFileInfo(at("out/其他/成品")).isDir());
    QCOMPARE(productFolderPaths(*detail, create.namingRule, at("out")).constLast(),
             at("out/厂 - 取/册_ (2)"));

    create.namingRule = s("no rule");
    FJDataOperate::perform(create);
    QCOMPARE(read(at("out/厂 - 取/1#- 套   - 取/p.jpg")), QByteArray("small"));
}

void TestFileOperations::productFolderThatCannotBeMade()
{
    auto detail = std::make_shared<OrderDetail>();
    DetailProduct one;
    one.goodName = s("一");
    DetailProduct two = one;
    two.goodName = s("二");
    two.imgs = {photo("a.jpg", "in/all/a.jpg")};
    detail->goods = {one, two};
    const QString rule = s(R"([{"key":"name","separator":""}])");
    const QString inTheWay = productFolderPaths(*detail, rule, at("out")).constFirst();
    write(inTheWay, "a file");
    QCOMPARE(createProductFolders(*detail, rule, at("out")),
             QStringList{s("一 路径创建失败/连接不上服务端")});
    QCOMPARE(filesBelow(at("out")).size(), 2);

    QDir(at("out")).removeRecursively();
    write(at("out"), "a file");
    const QStringList errors = createProductFolders(*detail, rule, at("out"));
    QCOMPARE(errors.size(), 1);
    QVERIFY(errors.first().endsWith(s(" 路径创建失败/连接不上服务端")));
}

void TestFileOperations::productsOfAStoppedRun()
{
    OrderDetail detail;
    DetailProduct product;
    product.imgs = {photo("a.jpg", "in/all/a.jpg"), photo("b.jpg", "in/90/a.jpg")};
    detail.goods = {product};
    QCOMPARE(createProductFolders(detail, QString(), at("out"), [] { return true; }),
             QStringList{s("已停止，2张产品照片未拷贝")});
    QVERIFY(filesBelow(at("out")).isEmpty());
}

/// Each task reports once, whatever becomes of it.
void TestFileOperations::endings()
{
    const auto stop = std::make_shared<std::atomic<bool>>(false);
    QVector<std::optional<TaskResult>> reports;
    const auto run = [&](const PerformTask &perform) {
        QThreadPool pool;
        pool.start(new FJDataThread(task("拷贝照片", "成品"), stop, perform,
                                    [&](const auto &result) { reports.append(result); }));
        pool.waitForDone();
    };
    run(&FJDataOperate::perform);
    run([](const DistributionTask &) -> TaskResult { throw std::runtime_error("oh"); });
    run([](const DistributionTask &) -> TaskResult { throw 7; });
    *stop = true;
    run(&FJDataOperate::perform);
    QCOMPARE(reports.size(), 4);
    QVERIFY(reports.at(0)->success);
    QCOMPARE(reports.at(1)->errmsg, s("a.jpg处理异常: oh"));
    QCOMPARE(reports.at(1)->imgData, s("17"));
    QCOMPARE(reports.at(2)->errmsg, s("a.jpg未知异常"));
    QVERIFY(!reports.at(3));
    QVERIFY(FJDataOperate::perform(task("别的")).type.isEmpty());
    QVERIFY(!FJDataOperate::perform(task("拷贝照片", "别的")).success);
}

void TestFileOperations::fullDisk()
{
    QVERIFY(QDir().mkpath(at("out")));
    const SmallDisk disk(at("out"), 1);
    if (!disk.isMounted())
        QSKIP("Mounting a disk of our own needs the rights to do so.");
    write(at("in/all/a.jpg"), QByteArray(2 << 20, 'x'));
    QCOMPARE(FJDataOperate::perform(task("下载原始档")).errmsg, s("a.jpg复制失败"));
    QVERIFY(filesBelow(at("out")).isEmpty());
}

QTEST_MAIN(TestFileOperations)
#include "test_fileoperations.moc"
