#include "net/basereq.h"
#include "net/formbody.h"
#include "net/imagerequest.h"
#include "net/orderqueries.h"
#include "net/replyfields.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

using namespace orderqueries;

namespace {

QJsonObject parsed(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

const Identity identity{"7"_s, "S7"_s, "E7"_s};

} // namespace

class TestQueries : public QObject
{
    Q_OBJECT

private slots:
    void escapesExactlyThreeSigns()
    {
        const QString value = "A&B+C% =#?/\\张"_s;
        QCOMPARE(FormBody().add("k"_s, value).bytes(), QByteArray("k=A%26B%2BC%25 =#?/\\张"));
        QCOMPARE(FormBody().addRaw("k"_s, value).bytes(), QByteArray("k=A&B+C% =#?/\\张"));
    }

    void searchBodies_data()
    {
        addColumns<int, QString, QByteArray>({"type", "role7id", "body"});
        const QByteArray tail = "&ratio=90&shopid=7&eid=E7&superid=S7&personid=E7";
        newRow("text", 0, QString(), "keyword=李 四&searchtype=1" + tail);
        newRow("shooting", 1, QString(), "keyword=2024-03-07&searchtype=4" + tail);
        newRow("selection", 2, QString(), "keyword=2024-12-30&searchtype=5" + tail);
        newRow("completion", 3, QString(), "keyword=2024-01-02&searchtype=6" + tail);
        newRow("other", 9, QString(), "keyword=李 四&searchtype=1" + tail);
        newRow("everybody", 0, QString::fromLatin1(""),
               "keyword=李 四&searchtype=1&role7id=" + tail);
        newRow("somebody", 0, "31", "keyword=李 四&searchtype=1&role7id=31" + tail);
    }

    void searchBodies()
    {
        QFETCH(int, type);
        QFETCH(QString, role7id);
        const OrderSearch search{type, "李 四"_s, QDate(2024, 3, 7), QDate(2024, 12, 30),
                                 QDate(2024, 1, 2)};
        QTEST(orderListBody(search, identity, role7id), "body");
    }

    void otherBodies()
    {
        QCOMPARE(switchShopBody("7"_s), QByteArray("shopid=7"));
        QCOMPARE(personsBody(identity), QByteArray("shopid=7&eid=E7&superid=S7&personid=E7"));
    }

    void looseFields_data();

    void looseFields()
    {
        QFETCH(QByteArray, json);
        const QJsonObject object = parsed(json.constData());
        QTEST(reply::text(object, "k"_s), "text");
        QTEST(reply::number(object, "k"_s, -1), "number");
    }

    void onlyTheTextOneIsSuccess_data();

    void onlyTheTextOneIsSuccess()
    {
        QFETCH(QByteArray, json);
        QTEST(reply::isSuccess(parsed(json.constData())), "success");
    }

    void readsAnOrder();
    void readsShops();
    void identityFollowsTheChosenBranch();

    void imageRedirects_data()
    {
        addColumns<QString, QString, bool>({"from", "to", "allowed"});
        const QString barcode = "https://h/index.php?a=getbarcodegen&token="_s;
        const QString token = AccountContext::apiToken;
        newRow("elsewhere", "http://h/a.jpg", "http://other/a.jpg", true);
        newRow("to TLS", "http://h/a.jpg", "https://other/a.jpg", true);
        newRow("from TLS", "https://h/a.jpg", "http://h/a.jpg", false);
        newRow("to the disk", "http://h/a.jpg", "file:///a.jpg", false);
        newRow("nowhere", "http://h/a.jpg", "http:///a.jpg", false);
        newRow("with the token", barcode + token, barcode + token + "&b=1"_s, true);
        newRow("away without it", barcode + token, "https://other/a.jpg", true);
        newRow("away with it", barcode + token, "https://other/?x="_s + token, false);
        newRow("hidden", barcode + token, "https://other/%35"_s + token.mid(1) + "/a.jpg"_s, false);
    }

    void imageRedirects()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QVERIFY(AccountContext::apiToken.startsWith(QLatin1Char('5'))); // %35 in one row
        QTEST(isImageRedirect(QUrl(from), QUrl(to)), "allowed");
    }

    void imagesBecomeDataUrls_data()
    {
        addColumns<QByteArray, QString, QString>({"image", "url", "mime"});
        newRow("jpeg", QByteArray("\xff\xd8\xff\xe0"), "http://h/a.png", "image/jpeg");
        newRow("png", QByteArray("\x89PNG\r\n\x1a\nxx"), "http://h/a.jpg", "image/png");
        newRow("gif", QByteArray("GIF89a.."), "http://h/a", "image/gif");
        newRow("webp", QByteArray("RIFF....WEBP"), "http://h/a.jpg", "image/webp");
        newRow("riff alone", QByteArray("RIFF....WAVE"), "http://h/a.JPG", "image/jpeg");
        newRow("bmp", QByteArray("BM.."), "http://h/a.jpg", "image/bmp");
        newRow("query", QByteArray("?"), "http://h/a.PNG?x=a.gif", "image/png");
        newRow("other suffix", QByteArray("?"), "http://h/a.TIFF", "image/tiff");
    }

    void imagesBecomeDataUrls()
    {
        QFETCH(QByteArray, image);
        QFETCH(QString, url);
        QFETCH(QString, mime);
        QCOMPARE(imageDataUrl(image, url),
                 "data:%1;base64,%2"_s.arg(mime, QString::fromLatin1(image.toBase64())));
    }
};

void TestQueries::looseFields_data()
{
    addColumns<QByteArray, QString, int>({"json", "text", "number"});
    newRow("text", QByteArray(R"({"k":"12"})"), "12", 12);
    newRow("number", QByteArray(R"({"k":12})"), "12", 12);
    newRow("large", QByteArray(R"({"k":1234567890123})"), "1234567890123", -1);
    newRow("fraction", QByteArray(R"({"k":1.5})"), "1.5", -1);
    newRow("null", QByteArray(R"({"k":null})"), "", -1);
    newRow("list", QByteArray(R"({"k":[1]})"), "", -1);
    newRow("object", QByteArray(R"({"k":{}})"), "", -1);
    newRow("missing", QByteArray(R"({})"), "", -1);
    newRow("words", QByteArray(R"({"k":"many"})"), "many", -1);
}

void TestQueries::onlyTheTextOneIsSuccess_data()
{
    addColumns<QByteArray, bool>({"json", "success"});
    newRow("text 1", QByteArray(R"({"code":"1"})"), true);
    newRow("number 1", QByteArray(R"({"code":1})"), false);
    newRow("text 1.0", QByteArray(R"({"code":"1.0"})"), false);
    newRow("blank", QByteArray(R"({"code":" 1"})"), false);
    newRow("true", QByteArray(R"({"code":true})"), false);
    newRow("missing", QByteArray(R"({})"), false);
}

void TestQueries::readsAnOrder()
{
    const OrderInfo order = readOrderInfo(parsed(R"({
        "id": 17, "orderpayforkey": "A100", "servicetimes": 2, "mname": "张三", "wname": null,
        "shotdate": "2024-3-7", "netpath": "\\\\nas\\x", "order_photo_id": "90",
        "imagesize_small": "", "imagesize_middle": "200", "imagesize_big": -1,
        "images": [{"img_name": "IMG_1.jpg", "type": 2}, "no object", null]})"),
                                          {"3"_s, {}});
    QCOMPARE(order.branch, "3"_s);
    QCOMPARE(order.id, "17"_s);
    QCOMPARE(order.serviceTimes, "2"_s);
    QCOMPARE(order.wname, QString());
    QCOMPARE(order.shotDate.month, "03"_s);
    QCOMPARE(order.netPath, "\\\\nas\\x"_s);
    QCOMPARE(order.smallSize, 90);
    QCOMPARE(order.middleSize, 200);
    QCOMPARE(order.bigSize, 1920);
    QCOMPARE(order.images.size(), 1);
    QCOMPARE(order.images.first().type, "2"_s);
    QVERIFY(order.imagesTaipian.isEmpty());
}

void TestQueries::readsShops()
{
    const QJsonObject login = parsed(R"({"shop_data": [
        {"id": 3, "name": "总店", "goodsfoldernamerule": "[]", "importpublicpath": "\\\\nas\\3"},
        {"id": "4", "name": "分店"}, 5]})");
    const QList<ShopRecord> shops = readShops(login);
    QCOMPARE(shops.size(), 2);
    QCOMPARE(shops.first().id, "3"_s);
    QCOMPARE(shops.first().goodsfoldernamerule, "[]"_s);
    QCOMPARE(shops.first().importPublicPath, "\\\\nas\\3"_s);
    QCOMPARE(shops.last().importPublicPath, QString());
    QCOMPARE(readShops(login, false).constFirst().goodsfoldernamerule, QString());
    QVERIFY(readShops(parsed(R"({"shop_data": {"id": 3}})")).isEmpty());
}

void TestQueries::identityFollowsTheChosenBranch()
{
    AccountContext::shopList = readShops(parsed(R"({"shop_data": [{"id":"3"},{"id":"4"}]})"));
    AccountContext::shopId = "3"_s;
    AccountContext::selectedShopId = "4"_s;
    QCOMPARE(Identity::fromAccount().shopId, "4"_s);
    AccountContext::selectedShopId = "gone"_s;
    QCOMPARE(Identity::fromAccount().shopId, "3"_s);
}

QTEST_GUILESS_MAIN(TestQueries)
#include "test_queries.moc"
