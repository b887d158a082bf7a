#include "photoimport/rules/photorequests.h"
#include "photoimport/rules/photorules.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace photorules;

namespace {

const orderqueries::Identity identity{"101"_s, "7001"_s, "3101"_s};

OrderInfo makeOrder(const QString &importPath, const QString &publicPath = QString())
{
    OrderInfo order;
    order.orderPayForKey = "TS1"_s;
    order.orderPhotoId = "p&1"_s;
    order.mname = "王"_s;
    order.importPath = importPath;
    order.importPublicPath = publicPath;
    return order;
}

} // namespace

class TestPhotoRules : public QObject
{
    Q_OBJECT

private slots:
    void jobsPerSource_data()
    {
        addColumns<int, int, QString>({"mode", "middleSize", "jobs"});
        const QString three = "a.jpg all  0|a.jpg 90 80 0|a.jpg 190 300 0|"
                              "a.jpg 1920 2000 0|b.jpg all  1|b.jpg 90 80 1|"
                              "b.jpg 190 300 1|b.jpg 1920 2000 1"_s;
        newRow("photos", 0, 300, three);
        newRow("photos without a middle size", 0, 0,
               "a.jpg all  0|a.jpg 90 80 0|a.jpg 1920 2000 0|"
               "b.jpg all  1|b.jpg 90 80 1|b.jpg 1920 2000 1");
        newRow("trial videos", 1, 300, "a.jpg 试拍视频  0|b.jpg 试拍视频  1");
        newRow("any other mode", 7, 300, "a.jpg 精修视频  0|b.jpg 精修视频  1");
    }

    void jobsPerSource()
    {
        QFETCH(int, mode);
        QFETCH(int, middleSize);
        OrderInfo order = makeOrder("D:\\o"_s);
        order.smallSize = 80;
        order.middleSize = middleSize;
        order.bigSize = 2000;
        QStringList jobs;
        const auto photos = jobsFor(order, {"/card/a.jpg"_s, "/card/x/b.jpg"_s}, photoModeOf(mode));
        for (const PhotoInfo &photo : photos) {
            jobs << "%1 %2 %3 %4"_s.arg(photo.fileName, photo.kind, photo.targetSize)
                        .arg(photo.sourceIndex);
            QCOMPARE(photo.enabled, 1);
            QCOMPARE(photo.importFolder, "D:\\o"_s);
            QVERIFY(photo.sourcePath.endsWith(photo.fileName));
        }
        QTEST(jobs.join(QLatin1Char('|')), "jobs");
    }

    void foldersAndOutputs()
    {
        OrderInfo order = makeOrder(QString(), "\\\\nas\\in"_s);
        order.serviceTimes = "2"_s;
        order.shotDate = parseShootDate("2024-3-7"_s);
        const QString folder = importFolderOf(order);
        QCOMPARE(folder, "\\\\nas\\in\\2024\\03\\07-TS1-2_王"_s);

        PhotoInfo photo;
        photo.kind = ".."_s;
        photo.fileName = "a:b.jpg"_s;
        QCOMPARE(outputPathOf(folder, photo), folder + "\\_\\a_b.jpg"_s);

        auto photos = jobsFor(order, {"/a.jpg"_s, "/b.jpg"_s}, PhotoMode::Photos);
        photos.append(PhotoInfo());
        QStringList expected{folder};
        for (const char *name : {"all", "原始档", "90", "190", "1920"})
            expected << folder + QLatin1Char('\\') + QString::fromUtf8(name);
        QCOMPARE(foldersOf(folder, photos), expected);
    }

    void paths_data()
    {
        // importPath: below a folder that exists; "-" for none
        addColumns<QString, QString, QString, bool>(
            {"importPath", "publicPath", "error", "namesPath"});
        const QString none = "-"_s;
        const QString noError;
        newRow("none", none, none, "订单 TS1-王 的导入路径和公共导入路径都为空", false);
        newRow("public", none, ".", noError, false);
        newRow("public, parent only", none, "new", noError, false);
        newRow("public, away", none, "a/b", "公共导入路径无法访问，请检查路径是否正确", true);
        newRow("own", ".", none, noError, false);
        newRow("own, parent only", "new", none, noError, false);
        newRow("own, can be made", "a/b/c", none, noError, false);
        newRow("own, cannot be made", "file/b/c", ".",
               "导入路径无法访问并且无法创建，请检查局域网是否能连接", true);
    }

    void paths()
    {
        const QTemporaryDir root;
        writeFile(root.filePath("file"_s));
        const auto below = [&root](const QString &path) {
            return path == QLatin1String("-") ? QString() : wireForm(root.filePath(path));
        };
        QFETCH(QString, importPath);
        QFETCH(QString, publicPath);
        QFETCH(bool, namesPath);
        const OrderInfo good = makeOrder(below("."_s));
        const OrderInfo order = makeOrder(below(importPath), below(publicPath));
        const PathProblem problem = validatePaths({good, order});
        QTEST(problem.error, "error");
        QCOMPARE(problem.path, !namesPath                   ? QString()
                               : order.importPath.isEmpty() ? order.importPublicPath
                                                            : order.importPath);
        QCOMPARE(QDir(root.filePath("new"_s)).exists(), false);
        // A folder that had to be made ends the check.
        const bool made = importPath == "a/b/c"_s;
        QCOMPARE(QDir(root.filePath("a/b/c"_s)).exists(), made);
        QCOMPARE(validatePaths({makeOrder(below("d/e"_s)), OrderInfo()}).isProblem(), false);
    }

    void noFolderIsMadeWhereTheProgramStands()
    {
        const QTemporaryDir root;
        const QString earlier = QDir::currentPath();
        const OrderInfo made = makeOrder(wireForm(root.filePath("a/b/c"_s)));
        QVERIFY(QDir().mkdir(root.filePath("here"_s)));
        QVERIFY(QDir::setCurrent(root.filePath("here"_s)));
        for (const QString &path : {"photos"_s, wireForm(root.filePath("here/../x/y"_s))}) {
            for (const OrderInfo &order : {makeOrder(path), makeOrder(QString(), path)}) {
                const PathProblem problem = validatePaths({made, order});
                QVERIFY2(problem.error.contains("TS1-王"_s), qPrintable(problem.error));
                QCOMPARE(problem.path, path);
            }
        }
        QVERIFY(QDir::setCurrent(earlier));
        QCOMPARE(QDir(root.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList("here"_s));
        QVERIFY(QDir(root.filePath("here"_s)).isEmpty());
    }

    void registrations_data()
    {
        addColumns<int, QString, bool, QString, QByteArray>(
            {"mode", "kind", "registered", "action", "added"});
        const QString photos = "&m=order&a=savepicpath"_s;
        const QString videos = "&m=order&a=savepicpathmv"_s;
        newRow("original", 0, originalKind, true, photos, QByteArray());
        newRow("variant", 0, bigKind, false, photos, QByteArray());
        newRow("trial video", 1, trialVideoKind, true, videos,
               QByteArray("&type=2&photonames=a%26b.jpg"));
        newRow("retouched video", 2, retouchedVideoKind, true, videos,
               QByteArray("&type=3&photonames=a%26b.jpg"));
    }

    void registrations()
    {
        QFETCH(int, mode);
        const PhotoMode photoMode = photoModeOf(mode);
        QFETCH(QString, kind);
        QFETCH(QByteArray, added);
        PhotoInfo photo;
        photo.kind = kind;
        photo.fileName = "a&b.jpg"_s;
        photo.targetSize = "1920"_s;
        QTEST(photorequests::isRegistered(photoMode, photo), "registered");
        QTEST(photorequests::registrationAction(photoMode), "action");
        QCOMPARE(photorequests::registrationBody(photoMode, "p&1"_s, "/Volumes/in/王/a&b.jpg"_s,
                                                 5000000000LL, photo, "nas"_s, identity),
                 QByteArray("order_photo_id=p%261&person_id=3101&size=5000000000&ratio=1920&path="
                            "\\\\nas\\in\\王\\a%26b.jpg&shopid=101&eid=3101&superid=7001"
                            "&personid=3101") +
                     added);
    }

    void otherBodies()
    {
        QCOMPARE(photorequests::orderPathBody(makeOrder("/volumes/in/o"_s), "nas"_s, identity),
                 QByteArray("order_photo_id=p%261&person_id=3101&path=\\\\nas\\in\\o&shopid=101"
                            "&eid=3101&superid=7001&personid=3101"));
        QCOMPARE(photorequests::deletionBody("p1"_s, {"4"_s, "5"_s}, identity),
                 QByteArray("order_photo_id=p1&ids=4,5&shopid=101&eid=3101&superid=7001"
                            "&personid=3101"));
        QStringList actions;
        for (const int mode : {0, 1, 2, 3})
            actions
                << photorequests::deletionAction(photoModeOf(mode)).mid(int(strlen("&m=order&a=")));
        QCOMPARE(actions.join(QLatin1Char(' ')), "delimages delmv delmv delimages"_s);
    }
};

QTEST_GUILESS_MAIN(TestPhotoRules)
#include "test_photorules.moc"
