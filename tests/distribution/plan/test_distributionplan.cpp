#include "distribution/files/rawfiles.h"
#include "distribution/plan/distributionplan.h"
#include "distribution/rules/distributionrequests.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

using Type = DesignFileSplitTypes;

Q_DECLARE_METATYPE(DesignFileSplitTypes)

namespace {

const orderqueries::Identity somebody{"1"_s, "2"_s, "3"_s};

/// JSON with single quotes. Paths are on a drive, where there are any.
QJsonObject json(QByteArray text)
{
    text.replace("'/", '\'' + drive().toUtf8() + '/');
    text.replace("'\\\\", '\'' + drive().toUtf8() + "\\\\");
    return QJsonDocument::fromJson(text.replace('\'', '"')).object();
}

/// \a path from behind \a folder on.
QString below(const QString &path, const QString &folder)
{
    return path.mid(drive().size() + folder.size());
}

/// "type target <- source" of each task, below the order's folder.
QStringList described(const OrderPlan &plan)
{
    QStringList lines;
    for (const DistributionTask &task : plan.tasks) {
        lines.append("%1 %2%3 <- %4 %5"_s
                         .arg(taskTypeText(task.type), below(task.targetFolder, "/o/"_s),
                              task.imgName, below(task.sourcePath, {}), task.imageId)
                         .simplified());
    }
    return lines;
}

} // namespace

class TestDistributionPlan : public QObject
{
    Q_OBJECT

private slots:
    void searches()
    {
        orderqueries::OrderSearch search;
        search.text = "A&B+1%"_s;
        search.shootingDate = {2024, 3, 7};
        search.selectionDate = {2024, 4, 8};
        search.type = 0;
        for (const auto &[type, expected] :
             {std::pair{"基本信息"_s, QByteArray("keyword=A%26B%2B1%25&searchtype=1")},
              {"拍照日期"_s, "keyword=2024-03-07&searchtype=4"},
              {"选片日期"_s, "keyword=2024-04-08&searchtype=5"},
              {QString(), "keyword="}}) {
            QCOMPARE(distributionrequests::searchTypeText(search.type), type);
            QCOMPARE(distributionrequests::orderListBody(
                         type, distributionrequests::keywordOf(search), somebody),
                     expected + "&shopid=1&eid=3&superid=2&personid=3");
            ++search.type;
        }
    }

    void readsOrders()
    {
        const auto list = distributionrequests::readOrders(
            json("{'data':[{'order_photo_id':7,'servicetimes':2,'number_jingxiu':3,"
                 "'images':[{'id':1},5]},{'id':'1'},{'order_photo_id':'7'},null,"
                 "{'order_photo_id':'8','images':'none'}]}"),
            {"3"_s, {}});
        const QVector<OrderData> &orders = list.orders;
        QCOMPARE(orders.size(), 3);
        QCOMPARE(orders.first().displayNumber(), "-服务2"_s);
        QCOMPARE(orders.first().numberJingxiu, "3"_s);
        QCOMPARE(orders.first().images.size(), 1);
        QVERIFY(orders.last().images.isEmpty());
    }

    void readsWhateverTheDetailHolds()
    {
        const OrderDetail detail = readOrderDetail(
            json("{'code':'1','message':'ok','order':{'mname':'M','yx_number':12,'list':[]},"
                 "'mname':'other','shopname':'S','down_txt':null,"
                 "'goods':[{'id':1,'imgs':[{'img_name':'a','picpath':'p','isdownload':'1'}],"
                 "'son_good':[{'goodtypeid':40,'isurgent':'1','son_good':{}}]},'x'],"
                 "'urgentgoods':{},'images':[{'img_name':'b','localpath':'l','picpath':''}],"
                 "'images_biaoji':[{'remark':[{'text':'1'},{'text':''},'2',3]},{'remark':'3'}]}"));
        QCOMPARE(detail.value("mname") + detail.value("yx_number") + detail.value("list") +
                     detail.value("message") + detail.shopName + detail.downTxt,
                 "M12S"_s);
        QCOMPARE(detail.goods.size(), 1);
        const DetailProduct &set = detail.goods.first();
        QVERIFY(set.isSet() && !set.urgent() && set.imgs.first().downloaded);
        QVERIFY(set.sonGood.first().isSet() && set.sonGood.first().urgent());
        QCOMPARE(set.imgs.first().source() + detail.images.first().source(), "pl"_s);
        QCOMPARE(detail.imagesBiaoji.first().remarks + detail.imagesBiaoji.last().remarks,
                 (QStringList{"1"_s, "2"_s, "3"_s}));
        // Sets within sets without end would take the stack along.
        QByteArray deep = "{'goods':[{'id':'0'}]}";
        for (int level = 0; level < 200; ++level)
            deep.replace("{'id':'0'}", "{'son_good':[{'id':'0'}]}");
        int depth = 0;
        OrderDetail nested = readOrderDetail(json(deep));
        for (QVector<DetailProduct> parts = nested.goods; !parts.isEmpty(); ++depth)
            parts = QVector<DetailProduct>(parts).first().sonGood;
        QVERIFY(depth < 10);
    }

    void plansNoTargetTwice()
    {
        PlanRequest request;
        request.type = Type::DownloadOriginals;
        request.orderFolder = drive() + "/o/"_s;
        request.options.originals = true;
        request.options.fullSize = true;
        request.detail = std::make_shared<const OrderDetail>(
            readOrderDetail(json("{'images':[{'id':'1','img_name':'a.jpg','localpath':'/x/a.jpg'},"
                                 "{'id':'2','img_name':'A.jpg','localpath':'/y/a.jpg'},"
                                 "{'id':'1','img_name':'a.jpg','localpath':'/x/a.jpg'},"
                                 "{'id':'3','localpath':'/z/c.jpg'},"
                                 "{'id':'4','img_name':'../d.jpg','localpath':'/z/d.jpg'}]}")));
        const OrderPlan plan = planOrder(request, [](const QString &photo) {
            return photo == drive() + "/y/a.jpg"_s ? QStringList(drive() + "/y/a.CR2"_s)
                                                   : QStringList();
        });
        QCOMPARE(described(plan).mid(0, 5),
                 (QStringList{"下载原始档 原始档/a.jpg <- /x/a.jpg 1"_s,
                              "下载原始档 原始档/A (2).jpg <- /y/a.jpg 2"_s,
                              "下载原始档 原始档/A (2).CR2 <- /y/a.CR2 2"_s,
                              "下载原始档 原始档/../d.jpg <- /z/d.jpg 4"_s,
                              "下载精修片 原图/a.jpg <- /x/a.jpg"_s}));
        QCOMPARE(plan.tasks.size(), 7);
        QCOMPARE(plan.problems.size(), 4); // twice each: renamed, and without a name
        QVERIFY(!plan.makesProducts);
    }

    void namesakes_data();
    void namesakes();

    void findsRawFilesBesideAPhoto()
    {
        const QTemporaryDir folder;
        for (const char *name : {"a.jpg", "a.CR2", "a.nef", "a.RAF", "a.txt", "ab.cr2", "b.ARW"}) {
            writeFile(folder.filePath(QString::fromLatin1(name)));
        }
        RawFiles raws;
        const auto beside = [&](const QString &photo) {
            QStringList names;
            const QStringList found = raws.beside(folder.path() + photo);
            for (const QString &path : found)
                names.append(QFileInfo(path).fileName());
            return names.join(QLatin1Char(' '));
        };
        QCOMPARE(beside("/a.jpg"_s), "a.CR2 a.nef a.RAF"_s);
        QCOMPARE(beside("\\/b.jpg"_s), "b.ARW"_s); // an escaped slash
        QCOMPARE(beside("/a.CR2"_s), "a.nef a.RAF"_s);
        QCOMPARE(beside("/none/c.jpg"_s), QString());
    }
};

void TestDistributionPlan::namesakes_data()
{
    // copied: what takes part in it, as the paths of its sources
    addColumns<DesignFileSplitTypes, QByteArray, QString, QString, int>(
        {"type", "retouched", "leftOut", "copied", "problems"});
    const QByteArray known = "{'id':'2','img_name':'a','localpath':'/r/2'},"
                             "{'id':'1','img_name':'a','localpath':'/r/1'}";
    const QByteArray named = "{'id':'91','img_name':'a','localpath':'/r/x'},"
                             "{'id':'92','img_name':'a','localpath':'/r/y'}";
    const QByteArray one = "{'id':'2','img_name':'a','localpath':'/r/2'},"
                           "{'id':'92','img_name':'a','localpath':'/r/x'}";
    const auto rows = [&](const char *name, Type type, const QByteArray &retouched,
                          const char *leftOut, const QString &copied, int problems) {
        newRow(name, type, retouched, QString::fromLatin1(leftOut), copied, problems);
    };
    // The second to land on a name is renamed, which is told.
    rows("known, together", Type::DownloadSelection, known, "", "成品/a</r/1 成品/a (2)</r/2"_s, 1);
    rows("known, with their products", Type::Distribution, known, "",
         "p1/成品/a</r/1 p2/成品/a</r/2"_s, 0);
    rows("known, first not wanted", Type::DownloadOriginals, known, "1", "精修/a (2)</r/2"_s, 1);
    rows("named, together", Type::DownloadSelection, named, "", "成品/a</r/x 成品/a (2)</r/y"_s, 1);
    // It may lie there from an earlier run.
    rows("known, together, one not wanted", Type::DownloadSelection, known, "1",
         "成品/a (2)</r/2"_s, 1);
    rows("known, second not wanted", Type::DownloadOriginals, known, "2", "精修/a</r/1"_s, 0);
    rows("named, together, one not wanted", Type::DownloadSelection, named, "1", QString(), 1);
    rows("named, with their products", Type::Distribution, named, "", QString(), 1);
    rows("named, all wanted", Type::DownloadOriginals, named, "", "精修/a</r/x 精修/a (2)</r/y"_s,
         1);
    rows("named, one not wanted", Type::DownloadOriginals, named, "1", QString(), 1);
    rows("named, none wanted", Type::DownloadOriginals, named, "1 2", QString(), 0);
    rows("one known, so the other is too", Type::Distribution, one, "",
         "p1/成品/a</r/x p2/成品/a</r/2"_s, 0);
    rows("fewer than photos", Type::DownloadSelection, "{'img_name':'a','localpath':'/r/x'}", "",
         QString(), 1);
}

/// Two cameras that count alike.
void TestDistributionPlan::namesakes()
{
    QFETCH(DesignFileSplitTypes, type);
    QFETCH(QByteArray, retouched);
    QFETCH(QString, leftOut);
    QFETCH(QString, copied);
    QFETCH(int, problems);
    PlanRequest request;
    request.type = type;
    request.orderFolder = drive() + "/o/"_s;
    request.productFolders = QStringList{drive() + "/o/p1"_s, drive() + "/o/p2"_s};
    request.options.retouched = true;
    const QStringList unwanted = leftOut.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    request.leftOut = QSet<QString>(unwanted.cbegin(), unwanted.cend());
    // The products know their photos by id, and by the file alone.
    request.detail = std::make_shared<const OrderDetail>(readOrderDetail(
        json("{'images':[{'id':'1','img_name':'a','localpath':'/x/all/a','localpath90':'/t/1'},"
             "{'id':'2','img_name':'a','localpath':'/y/all/a','localpath90':'/t/2'}],"
             "'goods':[{'id':'7','imgs':[{'id':'1','img_name':'a','localpath90':'/t/1'}]},"
             "{'id':'8','imgs':[{'img_name':'a','picpath':'\\\\y\\\\all\\\\a',"
             "'localpath90':'/t/2'}]}],'images_jingxiu':[" +
             retouched + "]}")));
    const OrderPlan plan = planOrder(request, [](const QString &) { return QStringList(); });
    QStringList found;
    for (const DistributionTask &task : plan.tasks) {
        if (task.sourcePath.startsWith(drive() + "/r/"_s))
            found.append(below(task.targetFolder, "/o/"_s) +
                         (task.type == TaskType::CopyPhoto ? "成品/"_s : QString()) + task.imgName +
                         QLatin1Char('<') + below(task.sourcePath, {}));
    }
    QCOMPARE(found.join(QLatin1Char(' ')), copied);
    const QStringList told = plan.problems.filter("精修"_s) + plan.problems.filter("/r/"_s);
    QCOMPARE(told.size(), problems);
    if (plan.makesProducts) {
        QCOMPARE(plan.pictures.find(drive() + "/t/1"_s, "a"_s), drive() + "/o/缩略图/a"_s);
        QCOMPARE(plan.pictures.find(drive() + "/t/2"_s, "a"_s), drive() + "/o/缩略图/a (2)"_s);
    }
}

QTEST_GUILESS_MAIN(TestDistributionPlan)
#include "test_distributionplan.moc"
