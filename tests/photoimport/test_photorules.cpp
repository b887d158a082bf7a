#include "photoimport/photorequests.h"
#include "photoimport/photorules.h"
#include "photoimport/tfdellocalphotoimg.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace photorules;

namespace {

const orderqueries::Identity identity{QStringLiteral("101"), QStringLiteral("7001"),
                                      QStringLiteral("3101")};

QString wireForm(QString path)
{
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}

OrderInfo makeOrder(const QString &importPath, const QString &publicPath = QString())
{
    OrderInfo order;
    order.orderPayForKey = QStringLiteral("TS1");
    order.orderPhotoId = QStringLiteral("p&1");
    order.mname = QStringLiteral("王");
    order.importPath = importPath;
    order.importPublicPath = publicPath;
    return order;
}

} // namespace

class TestPhotoRules : public QObject
{
    Q_OBJECT

private slots:
    void jobsPerSource_data();
    void jobsPerSource();
    void foldersAndOutputs();
    void preparedFolders();
    void paths_data();
    void paths();
    void aFolderThatCanBeMadeEndsTheCheck();
    void registrations_data();
    void registrations();
    void otherBodies();
    void deletesAnOriginalAndItsVariants();
};

void TestPhotoRules::jobsPerSource_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("middleSize");
    QTest::addColumn<QString>("jobs");
    const QString three = QStringLiteral("a.jpg all  0|a.jpg 90 80 0|a.jpg 190 300 0|"
                                         "a.jpg 1920 2000 0|b.jpg all  1|b.jpg 90 80 1|"
                                         "b.jpg 190 300 1|b.jpg 1920 2000 1");
    QTest::newRow("photos") << 0 << 300 << three;
    QTest::newRow("photos without a middle size")
        << 0 << 0
        << QStringLiteral("a.jpg all  0|a.jpg 90 80 0|a.jpg 1920 2000 0|"
                          "b.jpg all  1|b.jpg 90 80 1|b.jpg 1920 2000 1");
    QTest::newRow("trial videos") << 1 << 300
                                  << QStringLiteral("a.jpg 试拍视频  0|b.jpg 试拍视频  1");
    const QString retouched = QStringLiteral("a.jpg 精修视频  0|b.jpg 精修视频  1");
    QTest::newRow("retouched videos") << 2 << 300 << retouched;
    QTest::newRow("any other mode") << 7 << 300 << retouched;
}

void TestPhotoRules::jobsPerSource()
{
    QFETCH(int, mode);
    QFETCH(int, middleSize);
    OrderInfo order = makeOrder(QStringLiteral("D:\\o"));
    order.smallSize = 80;
    order.middleSize = middleSize;
    order.bigSize = 2000;
    QStringList jobs;
    const auto photos =
        jobsFor(order, {QStringLiteral("/card/a.jpg"), QStringLiteral("/card/x/b.jpg")}, mode);
    for (const PhotoInfo &photo : photos) {
        jobs << QStringLiteral("%1 %2 %3 %4")
                    .arg(photo.fileName, photo.kind, photo.targetSize)
                    .arg(photo.sourceIndex);
        QCOMPARE(photo.enabled, 1);
        QCOMPARE(photo.importFolder, QStringLiteral("D:\\o"));
        QVERIFY(photo.sourcePath.endsWith(photo.fileName));
    }
    QTEST(jobs.join(QLatin1Char('|')), "jobs");
}

void TestPhotoRules::foldersAndOutputs()
{
    OrderInfo order = makeOrder(QString(), QStringLiteral("\\\\nas\\in"));
    order.serviceTimes = QStringLiteral("2");
    order.shotDate = parseShootDate(QStringLiteral("2024-3-7"));
    const QString folder = importFolderOf(order);
    QCOMPARE(folder, QStringLiteral("\\\\nas\\in\\2024\\03\\07-TS1-2_王"));

    PhotoInfo photo;
    photo.kind = QStringLiteral("..");
    photo.fileName = QStringLiteral("a:b.jpg");
    QCOMPARE(outputPathOf(folder, photo), folder + QStringLiteral("\\_\\a_b.jpg"));

    auto photos = jobsFor(order, {QStringLiteral("/a.jpg"), QStringLiteral("/b.jpg")}, Photos);
    photos.append(PhotoInfo());
    QStringList expected{folder};
    for (const char *name : {"all", "原始档", "90", "190", "1920"})
        expected << folder + QLatin1Char('\\') + QString::fromUtf8(name);
    QCOMPARE(foldersOf(folder, photos), expected);
}

void TestPhotoRules::preparedFolders()
{
    const QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("new/order"));
    prepareFolders(foldersOf(wireForm(folder), jobsFor(OrderInfo(), {QString()}, TrialVideos)));
    const QStringList made =
        QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
    QCOMPARE(made.join(QLatin1Char(' ')), QStringLiteral("all 原始档 试拍视频"));
}

void TestPhotoRules::paths_data()
{
    QTest::addColumn<QString>("importPath"); // below a folder that exists; "-" for none
    QTest::addColumn<QString>("publicPath");
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("namesPath");
    const QString none = QStringLiteral("-");
    const QString noError;
    QTest::newRow("none") << none << none
                          << QStringLiteral("订单 TS1-王 的导入路径和公共导入路径都为空") << false;
    QTest::newRow("public") << none << QStringLiteral(".") << noError << false;
    QTest::newRow("public, parent only") << none << QStringLiteral("new") << noError << false;
    QTest::newRow("public, away") << none << QStringLiteral("a/b")
                                  << QStringLiteral("公共导入路径无法访问，请检查路径是否正确")
                                  << true;
    QTest::newRow("own") << QStringLiteral(".") << none << noError << false;
    QTest::newRow("own, parent only") << QStringLiteral("new") << none << noError << false;
    QTest::newRow("own, can be made") << QStringLiteral("a/b/c") << none << noError << false;
    QTest::newRow("own, cannot be made")
        << QStringLiteral("file/b/c") << QStringLiteral(".")
        << QStringLiteral("导入路径无法访问并且无法创建，请检查局域网是否能连接") << true;
}

void TestPhotoRules::paths()
{
    const QTemporaryDir root;
    QFile file(root.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const auto below = [&root](const QString &path) {
        return path == QLatin1String("-") ? QString() : wireForm(root.filePath(path));
    };
    QFETCH(QString, importPath);
    QFETCH(QString, publicPath);
    QFETCH(bool, namesPath);
    const OrderInfo good = makeOrder(below(QStringLiteral(".")));
    const OrderInfo order = makeOrder(below(importPath), below(publicPath));
    const PathProblem problem = validatePaths({good, order});
    QTEST(problem.error, "error");
    QCOMPARE(problem.path, !namesPath                   ? QString()
                           : order.importPath.isEmpty() ? order.importPublicPath
                                                        : order.importPath);
    QCOMPARE(QDir(root.filePath(QStringLiteral("new"))).exists(), false);
}

void TestPhotoRules::aFolderThatCanBeMadeEndsTheCheck()
{
    const QTemporaryDir root;
    const OrderInfo made = makeOrder(wireForm(root.filePath(QStringLiteral("a/b/c"))));
    QVERIFY(!validatePaths({made, makeOrder(QString())}).isProblem());
    QVERIFY(QDir(root.filePath(QStringLiteral("a/b/c"))).exists());
    QVERIFY(validatePaths({made, makeOrder(QString())}).isProblem());
}

void TestPhotoRules::registrations_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("registered");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QByteArray>("added");
    const QString photos = QStringLiteral("&m=order&a=savepicpath");
    const QString videos = QStringLiteral("&m=order&a=savepicpathmv");
    QTest::newRow("original") << 0 << originalKind << true << photos << QByteArray();
    QTest::newRow("variant") << 0 << bigKind << false << photos << QByteArray();
    QTest::newRow("trial video") << 1 << trialVideoKind << true << videos
                                 << QByteArray("&type=2&photonames=a%26b.jpg");
    QTest::newRow("retouched video")
        << 2 << retouchedVideoKind << true << videos << QByteArray("&type=3&photonames=a%26b.jpg");
}

void TestPhotoRules::registrations()
{
    QFETCH(int, mode);
    QFETCH(QString, kind);
    QFETCH(QByteArray, added);
    PhotoInfo photo;
    photo.kind = kind;
    photo.fileName = QStringLiteral("a&b.jpg");
    photo.targetSize = QStringLiteral("1920");
    QTEST(photorequests::isRegistered(mode, photo), "registered");
    QTEST(photorequests::registrationAction(mode), "action");
    QCOMPARE(photorequests::registrationBody(mode, QStringLiteral("p&1"),
                                             QStringLiteral("/Volumes/in/王/a&b.jpg"), 5000000000LL,
                                             photo, QStringLiteral("nas"), identity),
             QByteArray("order_photo_id=p%261&person_id=3101&size=5000000000&ratio=1920&path="
                        "\\\\nas\\in\\王\\a%26b.jpg&shopid=101&eid=3101&superid=7001"
                        "&personid=3101") +
                 added);
}

void TestPhotoRules::otherBodies()
{
    QCOMPARE(photorequests::orderPathBody(makeOrder(QStringLiteral("/volumes/in/o")),
                                          QStringLiteral("nas"), identity),
             QByteArray("order_photo_id=p%261&person_id=3101&path=\\\\nas\\in\\o&shopid=101"
                        "&eid=3101&superid=7001&personid=3101"));
    QCOMPARE(photorequests::deletionBody(QStringLiteral("p1"),
                                         {QStringLiteral("4"), QStringLiteral("5")}, identity),
             QByteArray("order_photo_id=p1&ids=4,5&shopid=101&eid=3101&superid=7001"
                        "&personid=3101"));
    QStringList actions;
    for (const int mode : {0, 1, 2, 3})
        actions << photorequests::deletionAction(mode).mid(int(strlen("&m=order&a=")));
    QCOMPARE(actions.join(QLatin1Char(' ')), QStringLiteral("delimages delmv delmv delimages"));
}

void TestPhotoRules::deletesAnOriginalAndItsVariants()
{
    TFDelLocalPhotoImg deletion;
    deletion.setDelPhotos({QStringLiteral("D:/shots/all/x/all/a.jpg"), QStringLiteral("D:/b.mp4")});
    QStringList expected;
    for (const char *folder : {"all", "90", "190", "1920"})
        expected << QStringLiteral("D:\\shots\\%1\\x\\%1\\a.jpg").arg(QLatin1String(folder));
    for (int copy = 0; copy < 4; ++copy)
        expected << QStringLiteral("D:\\b.mp4");
    QCOMPARE(deletion.paths(), expected);

    const QTemporaryDir root;
    const QDir order(root.path());
    const auto make = [&order](const QString &path) {
        order.mkpath(QFileInfo(path).path());
        QFile file(order.filePath(path));
        return file.open(QIODevice::WriteOnly);
    };
    for (const char *folder : {"all", "90", "1920"})
        QVERIFY(make(QLatin1String(folder) + QStringLiteral("/a.jpg")));
    for (const char *other : {"all/b.jpg", "190/b.jpg", "all/protected.jpg", "90/protected.jpg"})
        QVERIFY(make(QLatin1String(other)));
    const QString readOnly = order.filePath(QStringLiteral("all/protected.jpg"));
    QVERIFY(QFile::setPermissions(readOnly, QFileDevice::ReadOwner));

    deletion.setDelPhotos({order.filePath(QStringLiteral("all/a.jpg")), readOnly});
    deletion.start();
    QVERIFY(deletion.wait());
    QVERIFY(deletion.paths().isEmpty());
    QStringList left;
    QDirIterator files(root.path(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        left << order.relativeFilePath(files.next());
    left.sort();
    QCOMPARE(left.join(QLatin1Char(' ')), QStringLiteral("190/b.jpg all/b.jpg all/protected.jpg"));
}

QTEST_GUILESS_MAIN(TestPhotoRules)
#include "test_photorules.moc"
