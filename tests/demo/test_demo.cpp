#include "demo/demoservice.h"

#include <QFileInfo>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QByteArray session = "&token=5f0c2a9e7d41b6839a0e4c7b21f3d8a6&uid=9001&device=windows";
const QByteArray flagship = "&shopid=101&eid=3101&superid=7001&personid=3101" + session;
const QByteArray riverside = "&shopid=102&eid=3102&superid=7002&personid=3102" + session;
const QByteArray oldTown = "&shopid=103&eid=3103&superid=7003&personid=3103" + session;
const QByteArray firstOrder = "&order_photo_id=800001&orderid=50001" + flagship;

struct Answer
{
    QNetworkReply::NetworkError error = QNetworkReply::UnknownNetworkError;
    int status = 0;
    QByteArray body;

    QJsonObject object() const { return QJsonDocument::fromJson(body).object(); }
    QJsonValue operator[](const char *name) const { return object().value(QLatin1String(name)); }
    QString code() const { return (*this)["code"].toString(); }
};

// What one member of each entry of a list says, comma-separated.
QString listed(const QJsonValue &array, const char *member)
{
    QStringList list;
    const QJsonArray entries = array.toArray();
    for (const QJsonValue &entry : entries)
        list << entry[QLatin1String(member)].toString();
    return list.join(u',');
}

QString utf8(const char *text)
{
    return QString::fromUtf8(text);
}

QJsonObject json(const QByteArray &text)
{
    return QJsonDocument::fromJson(text).object();
}

bool writeFile(const QString &path, int size)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(QByteArray(size, 'x')) == size;
}

DemoService::Options optionsFor(const QTemporaryDir &folder)
{
    DemoService::Options options;
    options.dataFolder = folder.path();
    options.pictures = false;
    return options;
}

} // namespace

class TestDemo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void answers_data();
    void answers();
    void orders();
    void decodesAndRecords();
    void batch_data();
    void batch();
    void misbehaves_data();
    void misbehaves();
    void distortsMembers();
    void delaysHoldsAndRepeats();
    void controlsOverHttp();
    void resets();
    void startsOnlyWhereItMay();
    void speaksTls();
    void makesMaterial();

private:
    QNetworkReply *send(const DemoService &service, const QByteArray &action,
                        const QByteArray &body, const QSslConfiguration &tls = {});
    Answer finished(QNetworkReply *reply) const;
    Answer post(const QByteArray &action, const QByteArray &body)
    {
        return finished(send(*service_, action, body));
    }
    // A null body gets, any other posts.
    Answer control(const char *path, const QByteArray &body);
    QJsonObject firstOrderState() const
    {
        return service_->state()[u"orders"].toArray().at(0).toObject();
    }

    QTemporaryDir folder_;
    std::unique_ptr<DemoService> service_;
    QNetworkAccessManager network_;
};

void TestDemo::initTestCase()
{
    service_ = std::make_unique<DemoService>(optionsFor(folder_));
    QCOMPARE(service_->start(), QString());
}

void TestDemo::init()
{
    QCOMPARE(service_->reset(), QString());
}

QNetworkReply *TestDemo::send(const DemoService &service, const QByteArray &action,
                              const QByteArray &body, const QSslConfiguration &tls)
{
    QNetworkRequest request(QUrl(service.url() + QStringLiteral("/index.php?g=OrvelleDPc&m=") +
                                 QString::fromLatin1(action)));
    request.setSslConfiguration(tls);
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    return network_.post(request, body);
}

Answer TestDemo::finished(QNetworkReply *reply) const
{
    if (!QTest::qWaitFor([reply] { return reply->isFinished(); }, 20000))
        reply->abort();
    reply->deleteLater();
    return {reply->error(), reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
            reply->readAll()};
}

Answer TestDemo::control(const char *path, const QByteArray &body)
{
    QNetworkRequest request(QUrl(service_->url() + utf8(path)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return finished(body.isNull() ? network_.get(request) : network_.post(request, body));
}

void TestDemo::answers_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected"); // code, EID and the ids of the list

    const auto row = [](const char *name, const char *action, const QByteArray &body,
                        const char *expected) {
        QTest::newRow(name) << QByteArray(action) << body << utf8(expected);
    };
    const char login[] = "public&a=dologin";
    const QByteArray first = "username=demo01&password=";
    row("three branches", login, first + "abc123" + session, "1 3101 101,102,103");
    row("one branch", login, "username=demo02&password=abc123" + session, "1 3202 102");
    row("wrong password", login, first + "abc1234" + session, "0  ");
    row("password split by an ampersand", login, first + "&abc123" + session, "0  ");

    const char change[] = "public&a=switch_shop";
    row("change to a branch", change, "shopid=102" + session, "1 3102 ");
    row("change to no branch", change, "shopid=999" + session, "0  ");
    row("change to a branch of others", change,
        "shopid=101" + QByteArray(session).replace("9001", "9002"), "0  ");

    const char persons[] = "order&a=get_persons";
    const char everybody[] = "1  1011,1012,1013,1014";
    row("right ids", persons, flagship, everybody);
    row("branch alone", persons, "shopid=101" + session, everybody);
    row("other employee", persons, "shopid=101&eid=3102&superid=7001" + session, "0  ");
    row("other super id", persons, "shopid=101&eid=3101&superid=7002" + session, "0  ");
    row("other person", persons, "shopid=101&eid=3101&personid=3103" + session, "0  ");
    row("no branch", persons, "eid=3101&superid=7001" + session, "0  ");
    row("wrong token", persons, "shopid=101&token=1&uid=9001", "0  ");
    row("nobody logged in", persons, "shopid=101" + QByteArray(session).replace("9001", ""), "0  ");

    const char list[] = "order&a=order_list";
    row("order number", list, "keyword=TS10001&searchtype=1" + flagship, "1  50001,50002");
    row("man's name", list, "keyword=周子墨&searchtype=1" + flagship, "1  50001,50002");
    row("woman's name", list, "keyword=A%26B%2BC%25&searchtype=1" + flagship, "1  50003");
    row("other branch", list, "keyword=TS10001&searchtype=1" + riverside, "1  ");
    row("shoot date", list, "keyword=2024-03-07&searchtype=4" + riverside, "1  50007");
    row("the batch's shoot date", list, "keyword=2024-03-07&searchtype=6" + riverside, "1  50007");
    row("the other action", "order&a=order_list_type_1",
        "keyword=2024-03-15&searchtype=5" + riverside, "1  50007");
    row("selection date", list, "keyword=2024-03-15&searchtype=5" + riverside, "1  50007");
    row("a day without orders", list, "keyword=1999-01-01&searchtype=4" + riverside, "1  ");
    row("not a day", list, "keyword=TS10001&searchtype=4" + riverside, "0  ");

    const char batch[] = "order&a=savepicpath_batch";
    const QByteArray none = "imgnames=[]&type=5&localpath=x";
    row("unknown photo set", batch, none + "&order_photo_id=1" + flagship, "0  ");
    row("another branch's order", batch, none + "&order_photo_id=800001" + riverside, "0  ");
    row("ids of two orders", batch, none + "&orderid=50002&order_photo_id=800001" + flagship,
        "0  ");
    row("person of another branch", batch, none + "&person_id=3102" + firstOrder, "0  ");
    row("no folder", batch, "imgnames=[]&type=5" + firstOrder, "0  ");
    row("unknown type", batch, "imgnames=[]&type=7&localpath=x" + firstOrder, "0  ");
    row("broken list", batch, "imgnames=[{&type=5&localpath=x" + firstOrder, "0  ");
    row("no raw list", batch, "imgnames=[]&type=1&localpath=x" + firstOrder, "0  ");
    row("no path", "order&a=savepicpath", "path=" + firstOrder, "0  ");
}

void TestDemo::answers()
{
    QFETCH(QByteArray, action);
    QFETCH(QByteArray, body);
    const QJsonObject before = service_->state();
    const Answer answer = post(action, body);
    const QString ids = listed(answer["shop_data"], "id") + listed(answer["persons"], "id") +
                        listed(answer["data"], "id");
    QTEST(QStringList({answer.code(), answer["EID"].toString(), ids}).join(u' '), "expected");
    QVERIFY(!answer["message"].toString().isEmpty());
    QCOMPARE(answer["msg"], answer["message"]);
    QVERIFY(service_->state() == before);
}

void TestDemo::orders()
{
    const Answer answer = post("order&a=order_list", "keyword=&searchtype=1" + flagship);
    QCOMPARE(answer["openypml"].toString() + answer["delyp"].toString(), QStringLiteral("11"));
    const QJsonValue data = answer["data"];
    QCOMPARE(listed(data[0][u"images"], "img_name"),
             QStringLiteral("IMG_0003.jpg,IMG_0005.jpg,IMG_0007.jpg,IMG_0009.jpg"));
    QVERIFY(data[3][u"netpath"].toString().endsWith(QStringLiteral("\\#1 100% 家&外景+💍")));
    QVERIFY(!QDir().mkpath(data[5][u"netpath"].toString().replace(u'\\', u'/')));

    const QString person = data[0][u"role7id"].toString();
    const int expected = listed(data, "role7id").count(person);
    const Answer filtered =
        post("order&a=order_list", "keyword=&searchtype=1&role7id=" + person.toLatin1() + flagship);
    QVERIFY(expected > 0 && expected < data.toArray().size());
    QCOMPARE(listed(filtered["data"], "role7id").count(person), expected);
    QCOMPARE(filtered["data"].toArray().size(), expected);

    // One order, and only one, has nothing that a folder could be computed from.
    const Answer pathless = post("order&a=order_list", "keyword=&searchtype=1" + oldTown);
    QCOMPARE(listed(pathless["data"], "netpath").split(u',').count(QString()), 1);
    QVERIFY(pathless["data"].toArray().size() > 1);
}

void TestDemo::decodesAndRecords()
{
    // More than the server library takes by itself.
    const QByteArray longText(100000, 'x');
    for (const auto &[value, decoded] :
         {std::pair<QByteArray, QByteArray>("A%26B%2BC%25", "A&B+C%"),
          {"a+b=c", "a b=c"},
          {"周 💍\\原片", "周 💍\\原片"},
          {"%e5%91%A8", "周"},
          {"100% %zz %4", "100% %zz %4"},
          {"A&B", "A"},
          {longText, longText}}) {
        const QByteArray body = "value=" + value + flagship;
        service_->clearRequests();
        post("order&a=get_persons", flagship);
        const Answer unknown = post("order&a=nonsense", body);
        QCOMPARE(unknown["message"].toString(), QStringLiteral("未知的操作: order/nonsense"));
        QCOMPARE(listed(service_->requests(), "action"), QStringLiteral("get_persons,nonsense"));
        const QJsonValue record = service_->requests(QStringLiteral("nonsense")).at(0);
        QCOMPARE(record[u"fields"][u"value"].toString().toUtf8(), decoded);
        QCOMPARE(record[u"fields"][u"shopid"].toString(), QStringLiteral("101"));
        QCOMPARE(record[u"query"].toString(), QStringLiteral("g=OrvelleDPc&m=order&a=nonsense"));
        QCOMPARE(record[u"body"].toString().toUtf8(), body);
        QCOMPARE(QByteArray::fromBase64(record[u"body64"].toString().toLatin1()), body);
    }
}

void TestDemo::batch_data()
{
    QTest::addColumn<QByteArray>("lists");
    QTest::addColumn<QString>("seen");
    QTest::addColumn<QString>("seenRaw");
    QTest::addColumn<QString>("counts"); // originals/raw/retouched

    const auto row = [](const char *name, const QByteArray &lists, const char *seen,
                        const char *seenRaw, const char *counts) {
        QTest::newRow(name) << lists << utf8(seen) << utf8(seenRaw) << utf8(counts);
    };
    const QByteArray noRaw = "&rawimgnames=[]&type=1";
    row("all there",
        R"(&imgnames=[{"name":"a.jpg","size":10}]&rawimgnames=[{"name":"a.cr2","size":30}]&type=1)",
        "a.jpg", "a.cr2", "1/1/0");
    row("size as text", R"(&imgnames=[{"name":"a.jpg","size":"10"}])" + noRaw, "a.jpg", "",
        "1/0/0");
    row("wrong size", R"(&imgnames=[{"name":"a.jpg","size":11}])" + noRaw, "", "", "0/0/0");
    row("not there", R"(&imgnames=[{"name":"b.jpg","size":10}])" + noRaw, "", "", "0/0/0");
    row("elsewhere", R"(&imgnames=[{"name":"../原始档/a.cr2","size":30}])" + noRaw, "", "",
        "0/0/0");
    row("retouched", R"(&imgnames=[{"name":"r.jpg","size":20}]&type=5)", "r.jpg", "", "0/0/1");
}

void TestDemo::batch()
{
    QFETCH(QByteArray, lists);
    QString folder = folder_.path() + QStringLiteral("/share/海棠路旗舰店/A&B 100%");
    QVERIFY(writeFile(folder + QStringLiteral("/原片/a.jpg"), 10));
    QVERIFY(writeFile(folder + QStringLiteral("/原始档/a.cr2"), 30));
    QVERIFY(writeFile(folder + QStringLiteral("/精修片/r.jpg"), 20));

    const QByteArray path = folder.replace(u'/', u'\\').toUtf8().toPercentEncoding();
    const Answer answer =
        post("order&a=savepicpath_batch", "localpath=" + path + lists + firstOrder);
    QCOMPARE(answer.code(), QStringLiteral("1"));
    QCOMPARE(answer["local_imgnames"].toArray().size(), 1);
    QTEST(listed(answer["server_imgnames"], "name"), "seen");
    QTEST(listed(answer["server_rawimgnames"], "name"), "seenRaw");
    QCOMPARE(answer.object().contains(u"local_rawimgnames"), lists.contains("raw"));

    post("order&a=savepicpath", "size=10&path=\\a.jpg" + firstOrder);
    post("order&a=savepicpathmv", "size=10&path=\\a.mp4" + firstOrder);
    QCOMPARE(firstOrderState()[u"files"].toArray(),
             (QJsonArray{QStringLiteral("\\a.jpg"), QStringLiteral("\\a.mp4")}));

    const Answer list = post("order&a=order_list", "keyword=TS10001&searchtype=1" + flagship);
    const QJsonValue order = list["data"][0];
    QTEST(QStringLiteral("%1/%2/%3")
              .arg(order[u"number_yuanpian"].toString(), order[u"number_yuanshidang"].toString(),
                   order[u"number_jingxiu"].toString()),
          "counts");
}

void TestDemo::misbehaves_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("body"); // a pattern
    QTest::addColumn<bool>("parses");
    QTest::addColumn<bool>("acts");

    const auto row = [](const char *kind, int error, const char *body, bool parses, bool acts) {
        QTest::newRow(kind) << error << utf8(body) << parses << acts;
    };
    const int fine = QNetworkReply::NoError;
    row("http-error", QNetworkReply::InternalServerError, "^$", false, false);
    row("drop", QNetworkReply::RemoteHostClosedError, "^$", false, false);
    row("drop-silent", QNetworkReply::RemoteHostClosedError, "^$", false, false);
    row("broken-json", fine, R"(^\{.*[^}]$)", false, true);
    row("html", fine, "^<html>", false, true);
    row("empty", fine, "^$", false, true);
    row("array", fine, R"(^\[\{.*"code":"1".*\}\]$)", true, true);
    row("truncated-utf8", fine, R"(^\{.*"code":"1".*\}$)", false, true);
    row("refuse", fine, R"("code":"0","message":"not now","msg":"not now")", true, false);
    row("code-number", fine, R"("code":1,)", true, true);
}

void TestDemo::misbehaves()
{
    QFETCH(int, error);
    QFETCH(QString, body);
    const QString kind = utf8(QTest::currentDataTag());
    const bool counts = kind != u"drop-silent"; // the client itself sends these again
    const QByteArray order = R"({"action":"saveorderphotopath","message":"not now","kind":")";

    QCOMPARE(
        service_->misbehave(json(order + kind.toLatin1() + (counts ? "\"}" : "\",\"times\":-1}"))),
        QString());
    const Answer bad = post("order&a=saveorderphotopath", "path=a%26b" + firstOrder);
    QCOMPARE(int(bad.error), error);
    QVERIFY2(QString::fromUtf8(bad.body).contains(QRegularExpression(body)), bad.body.constData());
    QTEST(!QJsonDocument::fromJson(bad.body).isNull(), "parses");
    QTEST(firstOrderState()[u"folderpath"].toString() == u"a&b", "acts");
    QCOMPARE(service_->requests().at(0)[u"misbehaviour"].toString(), kind);
    QVERIFY(service_->requests().size() == 1 || !counts);

    QCOMPARE(counts ? QString() : service_->misbehave(json(order + "none\"}")), QString());
    QCOMPARE(post("order&a=saveorderphotopath", "path=b" + firstOrder).code(), QStringLiteral("1"));
    QCOMPARE(firstOrderState()[u"folderpath"].toString(), QStringLiteral("b"));
}

void TestDemo::distortsMembers()
{
    for (const char *order :
         {R"({"action":"order_list","kind":"missing-fields","fields":["openypml","data.netpath"]})",
          R"({"action":"*","kind":"data-wrong-type"})",
          R"({"action":"order_list","kind":"data-wrong-type","fields":["delyp","data.mname"]})"})
        QCOMPARE(service_->misbehave(json(order)), QString());

    const QByteArray search = "keyword=TS10001&searchtype=1" + flagship;
    const Answer missing = post("order&a=order_list", search);
    QVERIFY(missing["openypml"].isUndefined() && missing["delyp"].isString());
    QVERIFY(missing["data"][1][u"netpath"].isUndefined() && missing["data"][1][u"id"].isString());
    QVERIFY(post("order&a=order_list", search)["data"].isString());
    const Answer wrongType = post("order&a=order_list", search);
    QVERIFY(wrongType["delyp"].isArray() && wrongType["data"][1][u"mname"].isArray());
}

void TestDemo::delaysHoldsAndRepeats()
{
    QElapsedTimer clock;
    clock.start();
    service_->misbehave(json(R"({"action":"get_persons","kind":"delay","delay":60})"));
    QCOMPARE(post("order&a=get_persons", flagship).code(), QStringLiteral("1"));
    QVERIFY(clock.elapsed() >= 60);

    service_->misbehave(json(R"({"action":"get_persons","kind":"hold"})"));
    QNetworkReply *held = send(*service_, "order&a=get_persons", flagship);
    QTRY_COMPARE(service_->state()[u"held"].toInt(), 1);
    QCOMPARE(post("order&a=get_persons", riverside).code(), QStringLiteral("1"));
    QVERIFY(!held->isFinished());
    QCOMPARE(control("/demo/release", "").status, 200);
    QCOMPARE(finished(held).code(), QStringLiteral("1"));

    service_->misbehave(json(R"({"action":"get_persons","kind":"stale"})"));
    QCOMPARE(listed(post("order&a=get_persons", oldTown)["persons"], "id"),
             QStringLiteral("1011,1012,1013,1014"));
    QCOMPARE(listed(post("order&a=get_persons", oldTown)["persons"], "id"),
             QStringLiteral("1031,1032"));
}

void TestDemo::controlsOverHttp()
{
    for (const char *wrong : {R"({"action":"a","kind":"nonsense"})", R"({"kind":"drop"})", "[1]",
                              "{", R"({"action":"a","kind":"drop","times":0})"})
        QCOMPARE(control("/demo/misbehave", wrong).status, 400);
    QCOMPARE(control("/demo/misbehave",
                     R"({"action":"get_persons","kind":"http-error","status":503,"times":2})")
                 .status,
             200);
    for (const int status : {503, 503, 200})
        QCOMPARE(post("order&a=get_persons", flagship).status, status);
    post("order&a=nonsense", flagship);
    QCOMPARE(service_->requests().size(), 4);
    QCOMPARE(QJsonDocument::fromJson(control("/demo/requests?action=get_persons", {}).body).array(),
             service_->requests(QStringLiteral("get_persons")));
    QCOMPARE(control("/demo/requests/clear", "").status, 200);
    QCOMPARE(service_->requests().size(), 0);

    const QByteArray change = R"({"id":"50001","fields":{"netpath":"\\x","mname":"某某"}})";
    QCOMPARE(control("/demo/orders", change).status, 200);
    QCOMPARE(control("/demo/orders", R"({"id":"50001","fields":{"mname":"","no":""}})").status,
             400);
    const Answer list = post("order&a=order_list", "keyword=某某&searchtype=1" + flagship);
    QCOMPARE(listed(list["data"], "netpath"), QStringLiteral("\\x"));
    const int before = service_->state()[u"orders"].toArray().size();
    QCOMPARE(control("/demo/orders", R"({"add":5000,"shopid":"102"})").status, 200);
    QCOMPARE(QJsonDocument::fromJson(control("/demo/state", {}).body).object(), service_->state());
    const QStringList ids = listed(service_->state()[u"orders"], "order_photo_id").split(u',');
    QCOMPARE(QSet<QString>(ids.begin(), ids.end()).size(), before + 5000);
}

void TestDemo::resets()
{
    const QJsonObject before = service_->state();
    const QString share = folder_.path() + QStringLiteral("/share");
    const QTemporaryDir elsewhere;
    const QString kept = elsewhere.filePath(QStringLiteral("kept.jpg"));
    QVERIFY(writeFile(share + QStringLiteral("/滨江店/2024/a.jpg"), 1) && writeFile(kept, 1));
    QVERIFY(QFile::link(elsewhere.path(), share + QStringLiteral("/link")));
    post("order&a=saveorderphotopath", "path=x" + firstOrder);
    service_->misbehave(json(R"({"action":"get_persons","kind":"empty","times":-1})"));

    QCOMPARE(control("/demo/reset", "").status, 200);
    QCOMPARE(service_->state(), before);
    QCOMPARE(service_->requests().size(), 0);
    QCOMPARE(post("order&a=get_persons", flagship).code(), QStringLiteral("1"));
    QVERIFY(QDir(share + QStringLiteral("/滨江店")).isEmpty());
    QVERIFY(QFileInfo(share + QStringLiteral("/blocked")).isFile());
    QVERIFY(!QFileInfo::exists(share + QStringLiteral("/link")) && QFileInfo::exists(kept));
}

void TestDemo::startsOnlyWhereItMay()
{
    const QTemporaryDir folder;
    DemoService::Options options = optionsFor(folder);
    const QString photo = folder.filePath(QStringLiteral("share/wedding.jpg"));
    QVERIFY(writeFile(photo, 1));
    QVERIFY(!DemoService(options).start().isEmpty());
    QVERIFY(QFileInfo::exists(photo) && QDir(folder.path()).removeRecursively());

    options.port = service_->port();
    QVERIFY(!DemoService(options).start().isEmpty());

    options.port = 0;
    options.pathPrefix = QStringLiteral("Z:");
    DemoService prefixed(options);
    QCOMPARE(prefixed.start(), QString());
    const Answer shop = finished(send(prefixed, "public&a=switch_shop", "shopid=102" + session));
    QString share = folder.filePath(QStringLiteral("share"));
    const QString wireShare = QStringLiteral("Z:") + share.replace(u'/', u'\\');
    QCOMPARE(shop["importpublicpath"].toString(), QString(wireShare + QStringLiteral("\\滨江店")));
    QVERIFY(writeFile(folder.filePath(QStringLiteral("share/精修片/r.jpg")), 5));
    const Answer batch = finished(send(prefixed, "order&a=savepicpath_batch",
                                       R"(type=5&imgnames=[{"name":"r.jpg","size":5}]&localpath=)" +
                                           wireShare.toUtf8() + firstOrder));
    QCOMPARE(listed(batch["server_imgnames"], "name"), QStringLiteral("r.jpg"));
}

void TestDemo::speaksTls()
{
    const QTemporaryDir folder;
    DemoService::Options options = optionsFor(folder);
    options.tls = true;
    DemoService service(options);
    QCOMPARE(service.start(), QString());

    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    QCOMPARE(finished(send(service, "order&a=get_persons", flagship, tls)).error,
             QNetworkReply::SslHandshakeFailedError);
    QCOMPARE(service.requests().size(), 0);

    const QList<QSslCertificate> trusted = QSslCertificate::fromPath(service.caFile());
    QCOMPARE(trusted.size(), 1);
    tls.setCaCertificates(trusted);
    network_.clearConnectionCache();
    QNetworkReply *reply = send(service, "order&a=get_persons", flagship, tls);
    QSignalSpy finishedSpy(reply, &QNetworkReply::finished);
    QTRY_COMPARE(finishedSpy.count(), 1);
    QCOMPARE(reply->sslConfiguration().peerCertificateChain().size(), 2);
    QCOMPARE(finished(reply).code(), QStringLiteral("1"));
    service.misbehave(json(R"({"action":"*","kind":"drop"})"));
    QCOMPARE(finished(send(service, "order&a=get_persons", flagship, tls)).error,
             QNetworkReply::RemoteHostClosedError);
    QCOMPARE(service.requests().size(), 2);
}

void TestDemo::makesMaterial()
{
    const QTemporaryDir folder;
    DemoService::Options options = optionsFor(folder);
    options.pictures = true;
    const QDir card(folder.filePath(QStringLiteral("camera-card/DCIM/100TESSA")));
    QVERIFY(writeFile(card.filePath(QStringLiteral("IMG_0001.CR2")), 7));
    QCOMPARE(DemoService(options).start(), QString());
    QCOMPARE(QFileInfo(card.filePath(QStringLiteral("IMG_0001.CR2"))).size(), 7);

    const QStringList photos = card.entryList({QStringLiteral("*.jp*g")}, QDir::Files);
    QCOMPARE(photos.size(), 12);
    for (const QString &name : photos) {
        QImageReader reader(card.filePath(name));
        QVERIFY2(!reader.read().isNull(), qPrintable(name));
        QCOMPARE(reader.transformation() == QImageIOHandler::TransformationRotate90,
                 name.contains(u'4') || name.contains(u'8'));
    }
}

QTEST_GUILESS_MAIN(TestDemo)
#include "test_demo.moc"
