#include "fileimport/filechoice.h"
#include "fileimport/importrequests.h"
#include "fileimport/importrules.h"
#include "net/chosenfiles.h"
#include "net/transferprogress.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

using namespace importrequests;

namespace {

const orderqueries::Identity identity{QStringLiteral("7"), QStringLiteral("S7"),
                                      QStringLiteral("E7")};

ImportOrder sampleOrder()
{
    ImportOrder order;
    order.id = QStringLiteral("17");
    order.orderPhotoId = QStringLiteral("90");
    order.orderPayForKey = QStringLiteral("A100");
    order.serviceTimes = QStringLiteral("2");
    order.mname = QStringLiteral("张&三");
    order.importPath = QStringLiteral("\\\\nas\\p\\A+B 100%");
    return order;
}

ImportFile file(const QString &sourcePath, const QString &folder = QStringLiteral("\\\\nas\\t"))
{
    const QFileInfo info(sourcePath);
    ImportFile made;
    made.sourcePath = sourcePath;
    made.baseName = info.completeBaseName();
    made.suffix = info.suffix();
    made.targetFolder = folder;
    return made;
}

} // namespace

class TestImportRules : public QObject
{
    Q_OBJECT

private slots:
    void subFolders_data();
    void subFolders();
    void dropsFollowTheFirstFilter_data();
    void dropsFollowTheFirstFilter();
    void namesTheCustomerDidNotChoose();
    void filesInEachOthersWay();
    void ordersSharingAFolder();
    void batchBodies();
    void otherBodies();
    void readsOrders();
    void notices_data();
    void notices();
    void choosingMakesFolders();
    void droppingReadsFolders();
    void aFolderThatCannotBeMade();
    void progressIsToldInWords();
};

void TestImportRules::subFolders_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("folder");
    for (const char *suffix : {"jpg", "JPG", "jpeg", "JPGE"})
        QTest::newRow(suffix) << QString::fromLatin1(suffix) << QStringLiteral("原片");
    for (const char *suffix : {"JPEG", "Jpg", "cr2", "", "png"})
        QTest::newRow(suffix) << QString::fromLatin1(suffix) << QStringLiteral("原始档");
}

void TestImportRules::subFolders()
{
    QFETCH(QString, suffix);
    QTEST(importrules::subFolderFor(ImportMode::Originals, suffix), "folder");
    QCOMPARE(importrules::subFolderFor(ImportMode::Retouched, suffix), QStringLiteral("精修片"));
}

void TestImportRules::dropsFollowTheFirstFilter_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("original");
    QTest::addColumn<bool>("retouched");
    QTest::newRow("photo") << "a.jpg" << true << true;
    QTest::newRow("capitals") << "A.JPEG" << true << true;
    QTest::newRow("raw") << "a.CR3" << true << false;
    QTest::newRow("raw without a point") << "myraw" << true << false;
    QTest::newRow("other") << "a.png" << false << false;
    QTest::newRow("sidecar") << "a.jpg.xmp" << false << false;
}

void TestImportRules::dropsFollowTheFirstFilter()
{
    QFETCH(QString, name);
    QTEST(chosenfiles::matchesFilter(importrules::dialogFilter(ImportMode::Originals), name),
          "original");
    QTEST(chosenfiles::matchesFilter(importrules::dialogFilter(ImportMode::Retouched), name),
          "retouched");
}

void TestImportRules::namesTheCustomerDidNotChoose()
{
    const QVector<ImportFile> files = {file(QStringLiteral("/c/IMG_1.JPG")),
                                       file(QStringLiteral("/c/img_2.jpg")),
                                       file(QStringLiteral("/c/IMG.3.jpg"))};
    const QStringList chosen = {QStringLiteral("IMG_1.jpg"), QStringLiteral("IMG_2.jpg")};
    const QStringList unchosen = importrules::unchosenNames(files, chosen);
    QCOMPARE(unchosen, (QStringList{QStringLiteral("img_2.jpg"), QStringLiteral("IMG.3.jpg")}));
    QCOMPARE(importrules::unchosenQuestion(unchosen),
             QStringLiteral("要上传的精修照片与客人选中的照片名不一致，确认要继续上传吗？\n"
                            "下列是不一致的照片：\nimg_2.jpg\nIMG.3.jpg"));
}

void TestImportRules::filesInEachOthersWay()
{
    const QVector<ImportFile> files = {
        file(QStringLiteral("/a/IMG_1.jpg")), file(QStringLiteral("/b/img_1.JPG")),
        file(QStringLiteral("/a/x?.jpg")), file(QStringLiteral("/a/x_.jpg")),
        file(QStringLiteral("/b/IMG_1.jpg"), QStringLiteral("\\\\nas\\other"))};
    const QVector<QStringList> groups = importrules::sameTargetGroups(files);
    QCOMPARE(groups.size(), 2);
    QCOMPARE(groups.first(),
             (QStringList{QStringLiteral("/a/IMG_1.jpg"), QStringLiteral("/b/img_1.JPG")}));
    QVERIFY(chosenfiles::sameTargetNotice(groups).contains(QStringLiteral("/b/img_1.JPG")));
    QVERIFY(importrules::sameTargetGroups({files.first(), files.last()}).isEmpty());
}

void TestImportRules::ordersSharingAFolder()
{
    QVector<ImportOrder> orders(4, sampleOrder());
    orders[1].importPath = QStringLiteral("\\\\NAS/p\\a+b 100%\\");
    orders[2].importPath = QStringLiteral("\\\\nas\\p\\other");
    orders[3].importPath.clear(); // and no public root: it has no folder at all
    QCOMPARE(importrules::ordersSharingFolder(orders, 0), QVector<int>{1});
    QVERIFY(importrules::ordersSharingFolder(orders, 2).isEmpty());
}

void TestImportRules::batchBodies()
{
    FolderContents contents;
    contents.images = {{QStringLiteral("a&\"b.jpg"), 12}, {QStringLiteral("婚.jpg"), 3456789012}};
    contents.rawImages = {{QStringLiteral("a.cr2"), 5}};
    const QByteArray tail = "&order_photo_id=90&eid=E7&superid=S7&personid=E7&person_id=E7"
                            "&orderid=17&localpath=\\\\nas\\p\\A%2BB 100%25";
    const QByteArray images = R"([{"name":"a%26\"b.jpg","size":12},)"
                              R"({"name":"婚.jpg","size":3456789012}])";
    QCOMPARE(batchBody(ImportMode::Originals, sampleOrder(), contents, identity),
             "shopid=7&imgnames=" + images + R"(&rawimgnames=[{"name":"a.cr2","size":5}]&type=1)" +
                 tail);
    QCOMPARE(batchBody(ImportMode::Retouched, sampleOrder(), contents, identity),
             "shopid=7&imgnames=" + images + "&type=5" + tail);
    QCOMPARE(batchBody(ImportMode::Originals, sampleOrder(), {}, identity),
             "shopid=7&imgnames=[]&rawimgnames=[]&type=1" + tail);
}

void TestImportRules::otherBodies()
{
    QCOMPARE(orderPathBody(sampleOrder(), identity),
             QByteArray("order_photo_id=90&person_id=E7&path=\\\\nas\\p\\A%2BB 100%25"
                        "&shopid=7&eid=E7&superid=S7&personid=E7"));
    ImportFile photo = file(QStringLiteral("/c/1.JPEG"));
    photo.size = 77;
    const auto body = [&photo](ImportMode mode) {
        return photoBody(mode, sampleOrder(), photo, identity);
    };
    const QByteArray head = "order_photo_id=90&person_id=E7&size=77&path=\\\\nas\\t\\1.JPEG&type=";
    const QByteArray tail = "&shopid=7&eid=E7&superid=S7&personid=E7";
    QCOMPARE(body(ImportMode::Originals), head + "2" + tail);
    QCOMPARE(body(ImportMode::Retouched), head + "5" + tail);
    photo.suffix = QStringLiteral("Jpeg");
    QVERIFY(body(ImportMode::Originals).contains("&type=1&"));
}

void TestImportRules::readsOrders()
{
    const QJsonObject reply = QJsonDocument::fromJson(R"({"delyp": 1, "openypml": "x", "data": [
        {"id": "1", "netpath": "\\\\nas\\own", "number_yuanpian": "12", "role1name": "甲",
         "role1": "乙", "role2": "丙", "images": [{"img_name": "a.jpg"}]},
        {"netpath": "no id"}, {"id": 1, "mname": "again"}, "no object",
        {"id": 2, "shotdate": ""}]})")
                                  .object();
    const OrderList list = readOrders(reply, QStringLiteral("\\\\nas\\root"));
    QVERIFY(list.isList);
    QCOMPARE(list.elements, 5);
    const QVector<ImportOrder> orders = list.orders;
    QCOMPARE(orders.size(), 2);
    QCOMPARE(orders.first().importPath, QStringLiteral("\\\\nas\\own"));
    QCOMPARE(orders.first().numberYuanpian, 12);
    QCOMPARE(orders.first().role1Name, QStringLiteral("甲"));
    QCOMPARE(orders.first().role2Name, QStringLiteral("丙"));
    QCOMPARE(orders.first().selectedNames, QStringList(QStringLiteral("a.jpg")));
    QCOMPARE(orders.first().delyp, QStringLiteral("1"));
    QCOMPARE(orders.last().rowIndex, 1);
    QVERIFY(orders.last().importPath.isEmpty());
    QCOMPARE(importrules::importPathOf(orders.last()),
             QStringLiteral("\\\\nas\\root\\1970\\01\\01-"));
}

void TestImportRules::notices_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("originals");
    QTest::addColumn<QString>("retouched");
    const QString title = QStringLiteral(
        "<span style=\"font-size: 26px; font-weight: 600; color: #000; \"> 订单: A100-2");
    const auto section = [](const QString &kind, const QString &names) -> QString {
        return QStringLiteral(
                   "<br/> <span style=\"font-size: 25px; font-weight: 550 \">以下%1需要"
                   "重新导入:</span><br/><span style=\"font-size: 23px; color: #FF0000;\">"
                   "%2</span>")
            .arg(kind, names);
    };
    QTest::newRow("equal") << QByteArray(R"({"local_imgnames":[{"name":"a"}],
        "server_imgnames":[{"name":"a"}]})")
                           << QString() << QString();
    QTest::newRow("missing lists") << QByteArray("{}") << QString() << QString();
    QTest::newRow("order does not matter") << QByteArray(R"({"local_imgnames":[{"name":"a"},
        {"name":"b"}], "server_imgnames":[{"name":"b"},{"name":"a"}]})")
                                           << QString() << QString();
    QTest::newRow("photo missing")
        << QByteArray(R"({"local_imgnames":[{"name":"a<b>"},
        {"name":"c"}], "server_imgnames":[{"name":"d"}]})")
        << title + section(QStringLiteral("原片"), QStringLiteral("a&lt;b&gt;, c, d"))
        << title + section(QStringLiteral("精修照片"), QStringLiteral("a&lt;b&gt;, c, d"));
    QTest::newRow("raw missing") << QByteArray(R"({"local_rawimgnames":[{"name":"r"}]})")
                                 << title + section(QStringLiteral("原始档"), QStringLiteral("r"))
                                 << QString();
}

void TestImportRules::notices()
{
    QFETCH(QByteArray, reply);
    const BatchReply read = readBatchReply(QJsonDocument::fromJson(reply).object());
    QTEST(mismatchNotice(ImportMode::Originals, sampleOrder(), read), "originals");
    QTEST(mismatchNotice(ImportMode::Retouched, sampleOrder(), read), "retouched");
}

void TestImportRules::choosingMakesFolders()
{
    QTemporaryDir folder;
    ChoiceRequest request;
    request.importPath = folder.filePath(QStringLiteral("2024/#1 100%"));
    request.paths = QStringList{folder.filePath(QStringLiteral("IMG.1.JPEG")),
                                folder.filePath(QStringLiteral("IMG_2.jpg"))};
    QFile photo(request.paths.last());
    QVERIFY(photo.open(QIODevice::WriteOnly));
    photo.write("12345");
    photo.close();
    const ChoiceResult result = prepareChoice(request);
    QCOMPARE(result.folderError, QString());
    QCOMPARE(result.files.size(), 2);
    QCOMPARE(result.files.first().baseName, QStringLiteral("IMG.1"));
    QVERIFY(result.files.first().targetFolder.endsWith(QStringLiteral("\\原始档")));
    QVERIFY(result.files.last().targetFolder.endsWith(QStringLiteral("\\原片")));
    QCOMPARE(result.files.last().size, qint64(5));
    QCOMPARE(result.files.last().fileIndex, 1);
    QCOMPARE(QDir(request.importPath).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 2);

    request.mode = ImportMode::Retouched;
    QVERIFY(prepareChoice(request).files.first().targetFolder.endsWith(QStringLiteral("\\精修片")));
    QVERIFY(QDir(request.importPath).exists(QStringLiteral("精修片")));
}

void TestImportRules::droppingReadsFolders()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("card/DCIM")));
    for (const char *name : {"card/IMG_10.jpg", "card/IMG_9.jpg", "card/DCIM/b.NEF",
                             "card/DCIM/note.txt", "single.png"}) {
        QFile made(folder.filePath(QString::fromLatin1(name)));
        QVERIFY(made.open(QIODevice::WriteOnly));
    }
    ChoiceRequest request;
    request.importPath = folder.filePath(QStringLiteral("order"));
    request.dropped = true;
    request.paths = QStringList{folder.filePath(QStringLiteral("single.png"))};
    ChoiceResult result = prepareChoice(request);
    QCOMPARE(result.ignored, 1);
    QVERIFY(!QDir(request.importPath).exists()); // nothing to take, nothing made

    request.paths.append(folder.filePath(QStringLiteral("card")));
    result = prepareChoice(request);
    QStringList names;
    for (const ImportFile &taken : qAsConst(result.files))
        names.append(taken.fileName());
    QCOMPARE(names, (QStringList{QStringLiteral("b.NEF"), QStringLiteral("IMG_9.jpg"),
                                 QStringLiteral("IMG_10.jpg")}));
    QCOMPARE(result.ignored, 2);
}

void TestImportRules::aFolderThatCannotBeMade()
{
    QTemporaryDir folder;
    QFile blocking(folder.filePath(QStringLiteral("file")));
    QVERIFY(blocking.open(QIODevice::WriteOnly));
    ChoiceRequest request;
    request.importPath = blocking.fileName() + QStringLiteral("/order");
    request.paths = QStringList{blocking.fileName()};
    const ChoiceResult result = prepareChoice(request);
    QCOMPARE(result.folderError, QStringLiteral("创建目录失败: %1").arg(request.importPath));
    QVERIFY(result.files.isEmpty());
}

void TestImportRules::progressIsToldInWords()
{
    constexpr qint64 megabyte = 1024 * 1024;
    TransferProgress progress{12, 400, 96 * megabyte, 3 * 1024 * megabyte};
    TransferRate rate;
    QCOMPARE(progressText(progress, rate),
             QStringLiteral("文件 12/400 · 96.0 MB / 3.0 GB · 0 B/s"));
    for (int second = 0; second <= 10; ++second)
        rate.add(second * 1000, second * 8 * megabyte);
    QCOMPARE(rate.bytesPerSecond(), 8.0 * megabyte);
    QCOMPARE(progressText(progress, rate),
             QStringLiteral("文件 12/400 · 96.0 MB / 3.0 GB · 8.0 MB/s · 剩余 06:12"));
    // Older speed does not count: ten seconds of standstill are a standstill.
    rate.add(30000, 80 * megabyte);
    rate.add(40000, 80 * megabyte);
    QCOMPARE(rate.bytesPerSecond(), 0.0);
    QCOMPARE(rate.secondsLeft(megabyte), qint64(-1));
}

QTEST_GUILESS_MAIN(TestImportRules)
#include "test_importrules.moc"
