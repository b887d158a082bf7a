#include "fileimport/rules/importmismatch.h"
#include "fileimport/rules/importrequests.h"
#include "fileimport/rules/importrules.h"
#include "fileimport/run/filechoice.h"
#include "files/chosenfiles.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

using namespace importrequests;

namespace {

const orderqueries::Identity identity{"7"_s, "S7"_s, "E7"_s};

ImportOrder sampleOrder()
{
    ImportOrder order;
    order.id = "17"_s;
    order.orderPhotoId = "90"_s;
    order.orderPayForKey = "A100"_s;
    order.serviceTimes = "2"_s;
    order.mname = "张&三"_s;
    order.importPath = "\\\\nas\\p\\A+B 100%"_s;
    return order;
}

ImportFile file(const QString &sourcePath, const QString &folder = "\\\\nas\\t"_s)
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
    void subFolders_data()
    {
        addColumns<QString, QString>({"suffix", "folder"});
        for (const char *suffix : {"jpg", "JPG", "jpeg", "JPGE"})
            newRow(suffix, QString::fromLatin1(suffix), "原片");
        for (const char *suffix : {"JPEG", "Jpg", "cr2", "", "png"})
            newRow(suffix, QString::fromLatin1(suffix), "原始档");
    }

    void subFolders()
    {
        QFETCH(QString, suffix);
        QTEST(importrules::subFolderFor(ImportMode::Originals, suffix), "folder");
        QCOMPARE(importrules::subFolderFor(ImportMode::Retouched, suffix), "精修片"_s);
    }

    void dropsFollowTheFirstFilter()
    {
        const QStringList dropped{"/A.JPEG"_s,    "/a.CR3"_s, "/a.jpg"_s,
                                  "/a.jpg.xmp"_s, "/a.png"_s, "/myraw"_s};
        const auto taken = [&dropped](ImportMode mode) {
            auto files = chosenfiles::expandDrop(dropped, importrules::dialogFilter(mode)).files;
            files.sort();
            return files.join(QLatin1Char(' '));
        };
        QCOMPARE(taken(ImportMode::Originals), "/A.JPEG /a.CR3 /a.jpg /myraw"_s);
        QCOMPARE(taken(ImportMode::Retouched), "/A.JPEG /a.jpg"_s);
    }

    void namesTheCustomerDidNotChoose()
    {
        const QVector<ImportFile> files = {file("/c/IMG_1.JPG"_s), file("/c/img_2.jpg"_s),
                                           file("/c/IMG.3.jpg"_s)};
        const QStringList chosen = {"IMG_1.jpg"_s, "IMG_2.jpg"_s};
        const QStringList unchosen = importrules::unchosenNames(files, chosen);
        QCOMPARE(unchosen, (QStringList{"img_2.jpg"_s, "IMG.3.jpg"_s}));
        QCOMPARE(importrules::unchosenQuestion(unchosen),
                 "要上传的精修照片与客人选中的照片名不一致，确认要继续上传吗？\n"
                 "下列是不一致的照片：\nimg_2.jpg\nIMG.3.jpg"_s);
    }

    void filesInEachOthersWay()
    {
        const QVector<ImportFile> files = {file("/a/IMG_1.jpg"_s), file("/b/img_1.JPG"_s),
                                           file("/a/x?.jpg"_s), file("/a/x_.jpg"_s),
                                           file("/b/IMG_1.jpg"_s, "\\\\nas\\other"_s)};
        const QVector<QStringList> groups = importrules::sameTargetGroups(files);
        QCOMPARE(groups.size(), 2);
        QCOMPARE(groups.first(), (QStringList{"/a/IMG_1.jpg"_s, "/b/img_1.JPG"_s}));
        QVERIFY(chosenfiles::sameTargetNotice(groups).contains("/b/img_1.JPG"_s));
        QVERIFY(importrules::sameTargetGroups({files.first(), files.last()}).isEmpty());
    }

    void ordersSharingAFolder()
    {
        QVector<ImportOrder> orders(4, sampleOrder());
        orders[1].importPath = "\\\\NAS/p\\a+b 100%\\"_s;
        orders[2].importPath = "\\\\nas\\p\\other"_s;
        orders[3].importPath.clear(); // and no public root: it has no folder at all
        QCOMPARE(importrules::ordersSharingFolder(orders, 0), QVector<int>{1});
        QVERIFY(importrules::ordersSharingFolder(orders, 2).isEmpty());
    }

    void batchBodies();

    void otherBodies()
    {
        QCOMPARE(orderPathBody(sampleOrder(), identity),
                 QByteArray("order_photo_id=90&person_id=E7&path=\\\\nas\\p\\A%2BB 100%25"
                            "&shopid=7&eid=E7&superid=S7&personid=E7"));
        ImportFile photo = file("/c/1.JPEG"_s);
        photo.size = 77;
        const auto body = [&photo](ImportMode mode) {
            return photoBody(mode, sampleOrder(), photo, identity);
        };
        const QByteArray head =
            "order_photo_id=90&person_id=E7&size=77&path=\\\\nas\\t\\1.JPEG&type=";
        const QByteArray tail = "&shopid=7&eid=E7&superid=S7&personid=E7";
        QCOMPARE(body(ImportMode::Originals), head + "2" + tail);
        QCOMPARE(body(ImportMode::Retouched), head + "5" + tail);
        photo.suffix = "Jpeg"_s;
        QVERIFY(body(ImportMode::Originals).contains("&type=1&"));
    }

    void readsOrders();
    void notices_data();

    void notices()
    {
        QFETCH(QByteArray, reply);
        const BatchReply read = readBatchReply(QJsonDocument::fromJson(reply).object());
        QTEST(importmismatch::notice(ImportMode::Originals, sampleOrder(), read).shown,
              "originals");
        QTEST(importmismatch::notice(ImportMode::Retouched, sampleOrder(), read).shown,
              "retouched");
    }

    void resubmitQuestions_data()
    {
        addColumns<ServiceReply, QString>({"reply", "question"});
        using Outcome = ServiceReply::Outcome;
        const auto refused = [](const QJsonObject &object) {
            return ServiceReply{Outcome::Refused, object, "过大"_s, "不行"_s, {}};
        };
        newRow("refused", refused({{"msg"_s, "不行"_s}}), "不行 是否重新提交?");
        newRow("too large", refused({}), "服务端的答复过大，无法确认登记结果 是否重新提交?");
        const QString network = "网络不好，是否重新提交？如果取消，会停止导入。"_s;
        newRow("no answer", ServiceReply(), network);
        newRow("not trusted", ServiceReply{Outcome::CertificateRefused, {}, "x"_s, {}, {}},
               network);
    }

    void resubmitQuestions()
    {
        QFETCH(ServiceReply, reply);
        QTEST(resubmitQuestion(reply), "question");
    }

    void kindsThatAreNotAnnounced()
    {
        QVector<ImportFile> files;
        for (const char *path : {"/a.jpg", "/a.Jpg", "/b.JPEG", "/b.CR2", "/c.mp4", "/d.mp4",
                                 "/e.dng", "/raw", "/<b>.x&y"}) {
            ImportFile made = file(QLatin1String(path));
            made.targetFolder +=
                QLatin1Char('\\') + importrules::subFolderFor(ImportMode::Originals, made.suffix);
            made.state = ImportFile::Imported;
            files.append(made);
        }
        QCOMPARE(importrules::unannouncedText(files),
                 "未登记到服务端的类型: 7 个（.mp4 2 个，.JPEG 1 个，.Jpg 1 个，.dng 1 个，"
                 ".x&y 1 个，无扩展名 1 个）"_s);
        files[4].state = ImportFile::Failed;
        QVERIFY(importrules::unannouncedText(files).contains("6 个（"_s));
        QCOMPARE(importrules::unannouncedText(files.mid(0, 1)), QString());
    }

    void longNoticesAreCut()
    {
        BatchReply read;
        for (int number = 1; number <= 100000; ++number)
            read.localImages.append(QString::number(number));
        const BoxText notice = importmismatch::notice(ImportMode::Originals, sampleOrder(), read);
        QVERIFY(notice.shown.endsWith(", 200, … 共 100000 条</span>"_s));
        QVERIFY(notice.whole().endsWith("\n99999\n100000"_s));
    }

    void choosingMakesFolders()
    {
        QTemporaryDir folder;
        ChoiceRequest request;
        request.importPath = folder.filePath("2024/#1 100%"_s);
        request.paths =
            QStringList{folder.filePath("IMG.1.JPEG"_s), folder.filePath("IMG_2.jpg"_s)};
        writeFile(request.paths.last(), "12345");
        const ChoiceResult result = prepareChoice(request);
        QCOMPARE(result.folderError, QString());
        QCOMPARE(result.files.size(), 2);
        QCOMPARE(result.files.first().baseName, "IMG.1"_s);
        QVERIFY(result.files.first().targetFolder.endsWith("\\原始档"_s));
        QVERIFY(result.files.last().targetFolder.endsWith("\\原片"_s));
        QCOMPARE(result.files.last().size, qint64(5));
        QCOMPARE(result.files.last().fileIndex, 1);
        QCOMPARE(QDir(request.importPath).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 2);

        request.mode = ImportMode::Retouched;
        QVERIFY(prepareChoice(request).files.first().targetFolder.endsWith("\\精修片"_s));
        QVERIFY(QDir(request.importPath).exists("精修片"_s));

        // What joins an earlier choice: counted on, each once, and clashes looked for over both.
        request.mode = ImportMode::Originals;
        request.known = result.files;
        request.paths.append(folder.filePath("card/img_2.JPG"_s));
        ChoiceResult joined = prepareChoice(request);
        QCOMPARE(joined.files.size(), 1);
        QCOMPARE(joined.files.first().fileIndex, 2);
        QCOMPARE(joined.clashes, (QVector<QStringList>{request.paths.mid(1)}));
        QCOMPARE(importrules::unimportedWithout(request.known, request.paths.mid(1)), 1);
        request.known.first().state = ImportFile::Imported;
        QCOMPARE(importrules::unimportedWithout(request.known, request.paths.mid(1)), 0);
    }
};

void TestImportRules::batchBodies()
{
    FolderContents contents;
    contents.images = {{"a&\"b.jpg"_s, 12}, {"婚.jpg"_s, 3456789012}};
    contents.rawImages = {{"a.cr2"_s, 5}};
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

void TestImportRules::readsOrders()
{
    const QJsonObject reply = QJsonDocument::fromJson(R"({"delyp": 1, "openypml": "x", "data": [
        {"id": "1", "netpath": "\\\\nas\\own", "number_yuanpian": "12", "role1name": "甲",
         "role1": "乙", "role2": "丙", "images": [{"img_name": "a.jpg"}]},
        {"netpath": "no id"}, {"id": 1, "mname": "again"}, "no object",
        {"id": 2, "shotdate": ""}]})")
                                  .object();
    const FoundOrders list = readOrders(reply, {"3"_s, "\\\\nas\\root"_s});
    QVERIFY(list.isList);
    QCOMPARE(list.elements, 5);
    const QVector<ImportOrder> orders = list.orders;
    QCOMPARE(orders.size(), 2);
    QCOMPARE(orders.first().importPath, "\\\\nas\\own"_s);
    QCOMPARE(orders.first().numberYuanpian, 12);
    QCOMPARE(orders.first().role1Name, "甲"_s);
    QCOMPARE(orders.first().role2Name, "丙"_s);
    QCOMPARE(orders.first().selectedNames, QStringList("a.jpg"_s));
    QCOMPARE(orders.first().delyp, "1"_s);
    QCOMPARE(orders.last().rowIndex, 1);
    QVERIFY(orders.last().importPath.isEmpty());
    QCOMPARE(importrules::importPathOf(orders.last()), "\\\\nas\\root\\1970\\01\\01-"_s);
}

void TestImportRules::notices_data()
{
    addColumns<QByteArray, QString, QString>({"reply", "originals", "retouched"});
    const QString title =
        "<span style=\"font-size: 26px; font-weight: 600; color: #000; \"> 订单: A100-2"_s;
    const auto section = [](const QString &kind, const QString &names) -> QString {
        return "<br/> <span style=\"font-size: 25px; font-weight: 550 \">以下%1需要"
               "重新导入:</span><br/><span style=\"font-size: 23px; color: #FF0000;\">"
               "%2</span>"_s.arg(kind, names);
    };
    const auto row = [](const char *tag, const char *reply, const QString &originals,
                        const QString &retouched) {
        newRow(tag, QByteArray(reply), originals, retouched);
    };
    row("missing lists", "{}", {}, {});
    row("order does not matter", R"({"local_imgnames":[{"name":"a"},{"name":"b"}],
        "server_imgnames":[{"name":"b"},{"name":"a"}]})",
        {}, {});
    row("photo missing", R"({"local_imgnames":[{"name":"a<b>"},{"name":"c"}],
        "server_imgnames":[{"name":"d"}]})",
        title + section("原片"_s, "a&lt;b&gt;, c, d"_s),
        title + section("精修照片"_s, "a&lt;b&gt;, c, d"_s));
    row("raw missing", R"({"local_rawimgnames":[{"name":"r"}]})",
        title + section("原始档"_s, "r"_s), {});
}

QTEST_GUILESS_MAIN(TestImportRules)
#include "test_importrules.moc"
