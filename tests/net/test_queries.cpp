#include "net/basereq.h"
#include "net/formbody.h"
#include "net/orderqueries.h"
#include "net/replyfields.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

using namespace orderqueries;

class TestQueries : public QObject
{
    Q_OBJECT

private slots:
    void escapesExactlyThreeSigns();
    void searchBodies_data();
    void searchBodies();
    void otherBodies();
    void looseFields_data();
    void looseFields();
    void onlyTheTextOneIsSuccess_data();
    void onlyTheTextOneIsSuccess();
    void readsAnOrder();
    void readsShops();
    void identityFollowsTheChosenBranch();
    void imagesBecomeDataUrls_data();
    void imagesBecomeDataUrls();
};

namespace {

QJsonObject parsed(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

const Identity identity{QStringLiteral("7"), QStringLiteral("S7"), QStringLiteral("E7")};

} // namespace

void TestQueries::escapesExactlyThreeSigns()
{
    const QString value = QStringLiteral("A&B+C% =#?/\\张");
    QCOMPARE(FormBody().add(QStringLiteral("k"), value).bytes(),
             QByteArray("k=A%26B%2BC%25 =#?/\\张"));
    QCOMPARE(FormBody().addRaw(QStringLiteral("k"), value).bytes(),
             QByteArray("k=A&B+C% =#?/\\张"));
}

void TestQueries::searchBodies_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("role7id");
    QTest::addColumn<QByteArray>("body");
    const QByteArray tail = "&ratio=90&shopid=7&eid=E7&superid=S7&personid=E7";
    QTest::newRow("text") << 0 << QString() << "keyword=李 四&searchtype=1" + tail;
    QTest::newRow("shooting") << 1 << QString() << "keyword=2024-03-07&searchtype=4" + tail;
    QTest::newRow("selection") << 2 << QString() << "keyword=2024-12-30&searchtype=5" + tail;
    QTest::newRow("completion") << 3 << QString() << "keyword=2024-01-02&searchtype=6" + tail;
    QTest::newRow("other") << 9 << QString() << "keyword=李 四&searchtype=1" + tail;
    QTest::newRow("everybody") << 0 << QString::fromLatin1("")
                               << "keyword=李 四&searchtype=1&role7id=" + tail;
    QTest::newRow("somebody") << 0 << QStringLiteral("31")
                              << "keyword=李 四&searchtype=1&role7id=31" + tail;
}

void TestQueries::searchBodies()
{
    QFETCH(int, type);
    QFETCH(QString, role7id);
    const OrderSearch search{type, QStringLiteral("李 四"), QDate(2024, 3, 7), QDate(2024, 12, 30),
                             QDate(2024, 1, 2)};
    QTEST(orderListBody(search, identity, role7id), "body");
}

void TestQueries::otherBodies()
{
    QCOMPARE(switchShopBody(QStringLiteral("7")), QByteArray("shopid=7"));
    QCOMPARE(personsBody(identity), QByteArray("shopid=7&eid=E7&superid=S7&personid=E7"));
}

void TestQueries::looseFields_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("number");
    QTest::newRow("text") << QByteArray(R"({"k":"12"})") << "12" << 12;
    QTest::newRow("number") << QByteArray(R"({"k":12})") << "12" << 12;
    QTest::newRow("large") << QByteArray(R"({"k":1234567890123})") << "1234567890123" << -1;
    QTest::newRow("fraction") << QByteArray(R"({"k":1.5})") << "1.5" << -1;
    QTest::newRow("null") << QByteArray(R"({"k":null})") << "" << -1;
    QTest::newRow("list") << QByteArray(R"({"k":[1]})") << "" << -1;
    QTest::newRow("object") << QByteArray(R"({"k":{}})") << "" << -1;
    QTest::newRow("missing") << QByteArray(R"({})") << "" << -1;
    QTest::newRow("words") << QByteArray(R"({"k":"many"})") << "many" << -1;
}

void TestQueries::looseFields()
{
    QFETCH(QByteArray, json);
    const QJsonObject object = parsed(json.constData());
    QTEST(reply::text(object, QStringLiteral("k")), "text");
    QTEST(reply::number(object, QStringLiteral("k"), -1), "number");
}

void TestQueries::onlyTheTextOneIsSuccess_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("success");
    QTest::newRow("text 1") << QByteArray(R"({"code":"1"})") << true;
    QTest::newRow("number 1") << QByteArray(R"({"code":1})") << false;
    QTest::newRow("text 1.0") << QByteArray(R"({"code":"1.0"})") << false;
    QTest::newRow("blank") << QByteArray(R"({"code":" 1"})") << false;
    QTest::newRow("true") << QByteArray(R"({"code":true})") << false;
    QTest::newRow("missing") << QByteArray(R"({})") << false;
}

void TestQueries::onlyTheTextOneIsSuccess()
{
    QFETCH(QByteArray, json);
    QTEST(reply::isSuccess(parsed(json.constData())), "success");
}

void TestQueries::readsAnOrder()
{
    const OrderInfo order = readOrderInfo(parsed(R"({
        "id": 17, "orderpayforkey": "A100", "servicetimes": 2, "mname": "张三", "wname": null,
        "shotdate": "2024-3-7", "netpath": "\\\\nas\\x", "order_photo_id": "90",
        "imagesize_small": "", "imagesize_middle": "200", "imagesize_big": -1,
        "images": [{"img_name": "IMG_1.jpg", "type": 2}, "no object", null]})"));
    QCOMPARE(order.id, QStringLiteral("17"));
    QCOMPARE(order.serviceTimes, QStringLiteral("2"));
    QCOMPARE(order.wname, QString());
    QCOMPARE(order.shotDate.month, QStringLiteral("03"));
    QCOMPARE(order.netPath, QStringLiteral("\\\\nas\\x"));
    QCOMPARE(order.smallSize, 90);
    QCOMPARE(order.middleSize, 200);
    QCOMPARE(order.bigSize, 1920);
    QCOMPARE(order.images.size(), 1);
    QCOMPARE(order.images.first().type, QStringLiteral("2"));
    QVERIFY(order.imagesTaipian.isEmpty());
}

void TestQueries::readsShops()
{
    const QJsonObject login = parsed(R"({"shop_data": [
        {"id": 3, "name": "总店", "goodsfoldernamerule": "[]", "importpublicpath": "\\\\nas\\3"},
        {"id": "4", "name": "分店"}, 5]})");
    const QList<ShopRecord> shops = readShops(login);
    QCOMPARE(shops.size(), 2);
    QCOMPARE(shops.first().id, QStringLiteral("3"));
    QCOMPARE(shops.first().goodsfoldernamerule, QStringLiteral("[]"));
    QCOMPARE(shops.first().importPublicPath, QStringLiteral("\\\\nas\\3"));
    QCOMPARE(shops.last().importPublicPath, QString());
    QCOMPARE(readShops(login, false).constFirst().goodsfoldernamerule, QString());
    QVERIFY(readShops(parsed(R"({"shop_data": {"id": 3}})")).isEmpty());
}

void TestQueries::identityFollowsTheChosenBranch()
{
    AccountContext::shopList = readShops(parsed(R"({"shop_data": [{"id":"3"},{"id":"4"}]})"));
    AccountContext::shopId = QStringLiteral("3");
    AccountContext::selectedShopId = QStringLiteral("4");
    QCOMPARE(Identity::fromAccount().shopId, QStringLiteral("4"));
    AccountContext::selectedShopId = QStringLiteral("gone");
    QCOMPARE(Identity::fromAccount().shopId, QStringLiteral("3"));
}

void TestQueries::imagesBecomeDataUrls_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("mime");
    QTest::newRow("jpeg") << QByteArray("\xff\xd8\xff\xe0") << "http://h/a.png"
                          << "image/jpeg";
    QTest::newRow("png") << QByteArray("\x89PNG\r\n\x1a\nxx") << "http://h/a.jpg"
                         << "image/png";
    QTest::newRow("gif") << QByteArray("GIF89a..") << "http://h/a"
                         << "image/gif";
    QTest::newRow("webp") << QByteArray("RIFF....WEBP") << "http://h/a.jpg"
                          << "image/webp";
    QTest::newRow("riff alone") << QByteArray("RIFF....WAVE") << "http://h/a.JPG"
                                << "image/jpeg";
    QTest::newRow("bmp") << QByteArray("BM..") << "http://h/a.jpg"
                         << "image/bmp";
    QTest::newRow("query") << QByteArray("?") << "http://h/a.PNG?x=a.gif"
                           << "image/png";
    QTest::newRow("other suffix") << QByteArray("?") << "http://h/a.TIFF"
                                  << "image/tiff";
}

void TestQueries::imagesBecomeDataUrls()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, url);
    QFETCH(QString, mime);
    QCOMPARE(imageDataUrl(image, url),
             QStringLiteral("data:%1;base64,%2").arg(mime, QString::fromLatin1(image.toBase64())));
}

QTEST_GUILESS_MAIN(TestQueries)
#include "test_queries.moc"
