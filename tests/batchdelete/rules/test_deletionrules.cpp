#include "batchdelete/rules/deletionrequests.h"
#include "batchdelete/rules/deletionrules.h"
#include "batchdelete/run/deletiontexts.h"
#include "batchdelete/window/batchdeleteordermodel.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

using namespace deletionrules;

namespace {

/// A path that begins with one back slash, whole on this machine.
QString onDisk(const char *path)
{
    const QString text = QString::fromUtf8(path);
#ifdef Q_OS_WIN
    if (text.startsWith(QLatin1Char('\\')) && !text.startsWith(QLatin1String("\\\\")))
        return "D:"_s + text;
#endif
    return text;
}

BatchDeleteOrderInfo makeOrder(const QString &id, const QString &path, bool checked = true)
{
    BatchDeleteOrderInfo order;
    order.id = id;
    order.orderPhotoId = QLatin1Char('8') + id;
    order.orderPayForKey = QLatin1Char('T') + id;
    order.netPath = path;
    order.checked = checked;
    return order;
}

BatchDeleteFileInfo makeFile(const QString &name, int state = 0, const QString &reason = {})
{
    BatchDeleteFileInfo file;
    file.folderPath = "/share/order/原片"_s;
    file.rootLength = "/share/order"_s.size();
    file.fileName = name;
    file.state = state;
    file.reason = reason;
    return file;
}

} // namespace

class TestDeletionRules : public QObject
{
    Q_OBJECT

private slots:
    void folderKeys_data()
    {
        addColumns<QString, QString, bool>({"path", "key", "isRoot"});
        const auto row = [](const char *path, const char *key, bool isRoot) {
            newRow(path, QString::fromUtf8(path), QString::fromUtf8(key), isRoot);
        };
        row("\\\\NAS\\Photos\\2024\\", "//nas/photos/2024", false);
        row("//nas//photos/./2024/x/..", "//nas/photos/2024", false);
        row("\\\\nas\\photos\\2024. \\A", "//nas/photos/2024/a", false);
        row("\\\\nas\\photos", "//nas/photos", true);
        row("\\\\nas\\photos\\a\\..", "//nas/photos", true);
        row("\\\\nas", "//nas", true);
        row("D:\\", "d:", true);
        row("D:", "d:", true);
        row("D:\\a\\..\\.", "d:", true);
        row("D:\\照片", "d:/照片", false);
        row("/", "/", true);
        row("\\studio\\Å", "/studio/\u00e5", false);
        row("\\studio\\A\u030a", "/studio/\u00e5", false);
        for (const char *none : {"", "photos\\2024", "D:photos", "\\a\\..\\..", "\\\\?\\D:\\photos",
                                 "\\\\.\\D:\\photos", "\\a\\...\\b"})
            row(none, "", false);
    }

    void folderKeys()
    {
        QFETCH(QString, path);
        const FolderKey key = folderKey(path);
        QTEST(key.text, "key");
        QTEST(key.isRoot, "isRoot");
        QVERIFY(key.text.isEmpty() || key.text == "/"_s ||
                folderKey(path + "\\below"_s).isWithin(key));
    }

    void refusesWhatIsNotTheOrdersOwn_data()
    {
        // other: folder of an order that is not ticked
        addColumns<QString, QString, QString>({"path", "other", "reason"});
        const auto row = [](const char *name, const char *path, const char *other,
                            const char *reason) {
            newRow(name, onDisk(path), onDisk(other), QString::fromUtf8(reason));
        };
        row("its own", "\\share\\root\\a", "\\share\\root\\b", "");
        row("beginning alike", "\\share\\root\\a", "\\share\\root\\ab", "");
        row("outside of the root", "\\else\\a", "", "");
        row("no folder", "  ", "", "订单没有导片路径");
        const QString flawed = "导片路径无法使用: %1，请在后台修改该订单的本地云导片路径"_s;
        newRow("relative", "root\\a", "", flawed.arg("不是完整的路径"_s));
        newRow("leading up", onDisk("\\share\\root\\b\\..\\a"), "",
               flawed.arg("路径中含有上级目录"_s));
        row("drive", "\\", "", "导片路径是磁盘或共享的根目录");
        row("share", "\\\\nas\\photos\\", "", "导片路径是磁盘或共享的根目录");
#ifdef Q_OS_WIN
        newRow("no drive", "\\share\\root\\a", "", flawed.arg("不是完整的路径"_s));
        row("below another's drive", "\\x", "D:\\", "");
#endif
        row("public root", "\\Share\\.\\ROOT\\", "", "导片路径是公共导片目录");
        row("above the root", "\\share", "", "公共导片目录在该目录之中");
        row("another branch's", "\\else\\branch\\root", "", "导片路径是公共导片目录");
        row("above another branch's", "\\else\\branch", "", "公共导片目录在该目录之中");
        for (const char *common :
             {"\\share\\root\\2024", "\\share\\root\\2024\\3", "\\share\\root\\2024\\03",
              "\\else\\branch\\root\\2024\\2024-03"}) {
            row(common, common, "", "导片路径是公共导片目录中的年份或月份目录");
            // Whoever has no folder of its own protects nothing in it.
            row("below it", (QByteArray(common) + "\\a").constData(), common, "");
        }
        for (const char *own :
             {"\\share\\root\\202", "\\share\\root\\20240", "\\share\\root\\2024a",
              "\\share\\root\\03", "\\share\\root\\2024\\003", "\\share\\root\\2024\\2024-3",
              "\\share\\root\\2024\\20240301", "\\share\\root\\a\\2024",
              "\\share\\root\\2024\\03\\05", "\\share\\2024", "\\share\\root\\２０２４"})
            row(own, own, "", "");
        for (const char *none : {"\\\\NAS\\p", "\\share\\root", "\\share"})
            row("below what is no order's", (QByteArray(none) + "\\a").constData(), none, "");
        row("shared", "\\share\\root\\a", "\\share/root\\A/",
            "与未删除的订单 T2 使用同一个目录: %1");
        row("above another", "\\share\\root\\a", "\\share\\root\\a\\x\\y",
            "目录中包含未删除的订单 T2 的目录: %1");
        row("below another", "\\share\\root\\a\\x\\y", "\\share\\root\\a",
            "位于未删除的订单 T2 的目录中: %1");
    }

    void refusesWhatIsNotTheOrdersOwn()
    {
        QFETCH(QString, path);
        QFETCH(QString, other);
        const QString one = "1"_s;
        const QString two = "2"_s;
        const QStringList roots{onDisk("\\share\\root"), QString(), onDisk("\\else\\branch\\root")};
        QVector<BatchDeleteOrderInfo> listed{makeOrder(one, path), makeOrder(two, other, false)};
        const QStringList refused = refusals(listed, roots);
        QFETCH(QString, reason);
        QCOMPARE(refused.first(), reason.replace("%1"_s, other));
        QVERIFY(refused.last().isEmpty());
        // Ticked together they may share what they like.
        if (!other.isEmpty() && folderRefusal(other, roots).isEmpty()) {
            listed[1].checked = true;
            QCOMPARE(refusals(listed, roots), QStringList({{}, {}}));
        }
    }

    void refusesAlongTheChain()
    {
        // 3 stays, so 2 above it must, and so must 1 above that; 4 has nothing to do with them.
        const auto refused = refusals(
            {makeOrder("1"_s, onDisk("\\r\\a")), makeOrder("2"_s, onDisk("\\r\\a\\b")),
             makeOrder("3"_s, onDisk("\\r\\a\\b\\c"), false), makeOrder("4"_s, onDisk("\\r\\d"))},
            {onDisk("\\r")});
        QStringList none = refused;
        QCOMPARE(none.removeAll({}), 2);
        QVERIFY(!refused.at(0).isEmpty() && !refused.at(1).isEmpty());

        // Whoever is refused by itself counts as staying, too.
        BatchDeleteOrderInfo incomplete = makeOrder("5"_s, onDisk("\\r\\e\\f"));
        incomplete.orderPhotoId.clear();
        QVERIFY(
            !refusals({makeOrder("6"_s, onDisk("\\r\\e")), incomplete}, {}).contains(QString()));
    }

    void refusesLinksAndOtherNames()
    {
        const QTemporaryDir folder;
        const auto inside = [&folder](const char *name) {
            return wireForm(folder.filePath(QString::fromUtf8(name)));
        };
        QVERIFY(QDir(folder.path()).mkpath("real/root/order/a/b"_s));
        if (!linkFolder(folder.filePath("real"_s), folder.filePath("link"_s)))
            QSKIP("no links to folders here");
        QVERIFY(
            linkFolder(folder.filePath("real/root/order"_s), folder.filePath("real/root/alias"_s)));
        QVERIFY(linkRefusal(inside("real/root/order"), {inside("real/root")}).isEmpty());
        QVERIFY(linkRefusal(inside("real/root/alias/"), {}).contains("alias"_s));
        QVERIFY(linkRefusal(inside("real/root/alias/2024"), {inside("x"), inside("real/root")})
                    .contains("alias"_s));
        // How the studio comes to its public root is its own affair.
        QVERIFY(linkRefusal(inside("link/root/order"), {inside("link/root")}).isEmpty());
        QVERIFY(linkRefusal(inside("link/root/order"), {inside("")}).contains("link"_s));

        // One folder by two names, as of a share and of the drive letter it has.
        for (const auto &[path, other, root, reason] :
             {std::tuple("link/root/order/a", "real/root/order/a", "x", "与未删除的订单 T2 使用"),
              {"link/root/order/a", "real/root/order/a/b", "x", "目录中包含未删除的订单 T2"},
              {"link/root/order/a/b", "real/root/order/a", "x", "位于未删除的订单 T2"},
              {"link/root", "x", "real/root", "导片路径是公共导片目录"},
              {"link/root", "x", "real/root/order", "公共导片目录在该目录之中"},
              {"link/root/order/a", "real/root/order/b", "real/root", ""}}) {
            const auto judged =
                plan({makeOrder("1"_s, inside(path)), makeOrder("2"_s, inside(other), false)},
                     {inside(root)});
            QCOMPARE(judged.refused.isEmpty(), *reason == '\0');
            QVERIFY2(*reason == '\0' ||
                         judged.refused.first().note.startsWith(QString::fromUtf8(reason)),
                     reason);
        }
    }

    void plansAndWords()
    {
        BatchDeleteOrderInfo fine = makeOrder("1"_s, onDisk("\\r\\a"));
        fine.serviceTimes = "2"_s;
        fine.mname = "周"_s;
        fine.wname = "林"_s;
        const auto result =
            plan({fine, makeOrder("2"_s, {}), makeOrder("3"_s, onDisk("\\r\\c"), false)}, {});
        QCOMPARE(result.orders.size(), 1);
        QCOMPARE(result.refused.size(), 1);
        QCOMPARE(
            confirmation(result),
            "下列 1 个订单的目录将被清空，其中的全部文件会永久删除，无法恢复。"
            "确认要继续吗？\n\nT1-2 周 林\n    %1\n\n"
            "下列 1 个订单不会删除：\n\nT2 \n    原因: 订单没有导片路径"_s.arg(onDisk("\\r\\a")));
    }

    void bodies()
    {
        const orderqueries::Identity identity{"7"_s, "S7"_s, "E7"_s};
        BatchDeleteFileInfo kept = makeFile("link"_s);
        kept.kept = true;
        const auto files = {makeFile("a&b.jpg"_s), kept,
                            makeFile("gone"_s, BatchDeleteFileInfo::NotReported)};
        QCOMPARE(
            deletionrequests::announceBody(identity, "81"_s, files),
            QByteArray("shopid=7&eid=E7&superid=S7&personid=E7&order_photo_id=81&pics="
                       "[{\"picname\":\"a%26b.jpg\",\"picpath\":\"/share/order/原片/a%26b.jpg\","
                       "\"picshortpath\":\"原片/a%26b.jpg\"}]"));
        QCOMPARE(deletionrequests::reportBody(identity, "81"_s, *files.begin()),
                 QByteArray("shopid=7&eid=E7&superid=S7&personid=E7&order_photo_id=81&"
                            "picpath=/share/order/原片/a%26b.jpg&picname=a%26b.jpg"));
    }

    void readsOrders();

    void listsAndTables()
    {
        BatchDeleteOrderInfo order = makeOrder("1"_s, "=\\r"_s);
        BatchDeleteFileInfo gone = makeFile("b.jpg"_s, BatchDeleteFileInfo::Deleted);
        gone.missing = true;
        order.setFiles({makeFile("a.jpg"_s, BatchDeleteFileInfo::Deleted), gone,
                        makeFile("c\".jpg"_s, BatchDeleteFileInfo::InUse, "文件被其他程序占用"_s),
                        makeFile("d.jpg"_s, BatchDeleteFileInfo::NotReported),
                        makeFile("e.jpg"_s)});
        QCOMPARE(deletiontexts::succeededList(order).shown,
                 " 删除成功的照片\na.jpg\nb.jpg (文件不存在)"_s);
        QCOMPARE(deletiontexts::failedList(order).shown,
                 " 删除失败的照片\nc\".jpg (文件被占用): 文件被其他程序占用\n"
                 "d.jpg: 提交状态失败"_s);
        QVERIFY(!deletiontexts::csv({order}).contains("a.jpg"));
        order.processed = true;
        const QList<QByteArray> lines = deletiontexts::csv({order}).split('\n');
        QCOMPARE(lines.size(), 7);
        QVERIFY(lines.at(0).startsWith("\xEF\xBB\xBF\"订单号\",") && lines.at(0).endsWith('\r'));
        QCOMPARE(lines.at(3),
                 QByteArray("\"T1\",\"\",\"'=\\r\",\"/share/order/原片/c\"\".jpg\",\"0\","
                            "\"删除失败\",\"文件被其他程序占用\"\r"));
    }

    void countsFollowTheStates()
    {
        BatchDeleteOrderInfo order;
        order.setFiles(QVector<BatchDeleteFileInfo>(9));
        for (int state = 0; state <= 8; ++state) {
            order.setFile(state, makeFile(QString(), state));
            order.setFile(state, makeFile(QString(), state)); // again: counted once
        }
        order.setFile(9, makeFile(QString(), 2));
        QCOMPARE(order.succeeded(), 1);
        QCOMPARE(order.failed(), 6);
        QCOMPARE(order.unreported(), 1);
        order.setFile(2, makeFile(QString(), 0));
        QCOMPARE(order.succeeded(), 0);
        BatchDeleteFileInfo large = makeFile(QString(), BatchDeleteFileInfo::NotDeleted);
        large.size = 800;
        order.setFile(7, large);
        QCOMPARE(order.bytes(), 800);
        QCOMPARE(order.bytesDone(), 0);
        large.state = BatchDeleteFileInfo::Failed;
        order.setFile(7, large);
        QCOMPARE(order.bytesDone(), 800);
        order.setFiles({});
        QCOMPARE(order.bytes() + order.bytesDone(), 0);
    }
};

void TestDeletionRules::readsOrders()
{
    const auto read = [](const char *json) {
        return deletionrequests::readOrders(QJsonDocument::fromJson(json).object(), {"3"_s, {}});
    };
    const auto list = read(R"({"data":[{"id":5,"order_photo_id":"85","fulfil_time":"2024-01-02",
        "netpath":"\\\\n\\p"},{"id":"5","order_photo_id":85,"netpath":"moved"},{"netpath":"no id"},
        {"id":5,"order_photo_id":"86","netpath":"other"},{"order_photo_id":"87"},
        {"id":"5","order_photo_id":"86","netpath":"other"},null,7]})");
    QCOMPARE(list.elements, 8);
    QStringList shown;
    for (const BatchDeleteOrderInfo &order : list.orders)
        shown += order.branch + order.id + QLatin1Char('-') + order.orderPhotoId;
    QCOMPARE(shown, (QStringList{"35-85"_s, "35-86"_s, "3-87"_s}));
    QCOMPARE(list.orders.first().fulfilTime, "2024-01-02"_s);
    QCOMPARE(list.orders.first().netPath, "\\\\n\\p"_s);
    // What cannot be told from the rest protects its folder all the same.
    QCOMPARE(list.unlisted.size(), 2);
    QCOMPARE(list.unlisted.first().netPath, "moved"_s);
    QCOMPARE(list.unlisted.last().netPath, "no id"_s);
    for (const char *none : {"{}", R"({"data":null})", R"({"data":"text"})", R"({"data":{}})"})
        QVERIFY2(!read(none).isList, none);

    const auto nested = read(R"({"data":[{"id":1,"order_photo_id":2,"netpath":"\\\\n\\p\\a"},
        {"netpath":"\\\\n\\p\\A\\b"}]})");
    BatchDeleteOrderModel model;
    model.setOrders(nested.orders, nested.unlisted);
    model.checkAll(true);
    QCOMPARE(refusals(model.ordersWithFolders(), {}).constFirst(),
             "目录中包含未删除的订单 (无编号) 的目录: \\\\n\\p\\A\\b"_s);
}

QTEST_GUILESS_MAIN(TestDeletionRules)
#include "test_deletionrules.moc"
