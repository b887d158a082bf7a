#include "demo/demoservice.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QByteArray session = "&token=5f0c2a9e7d41b6839a0e4c7b21f3d8a6&uid=9001&device=windows";
const QByteArray flagship = "&shopid=101&eid=3101&superid=7001&personid=3101" + session;
const QByteArray riverside = "&shopid=102&eid=3102&superid=7002&personid=3102" + session;
const QByteArray firstOrder = "&order_photo_id=800001&orderid=50001" + flagship;

struct Answer
{
    int error = QNetworkReply::UnknownNetworkError;
    QByteArray body;

    QJsonValue operator[](const char *name) const
    {
        return QJsonDocument::fromJson(body).object().value(QLatin1String(name));
    }
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

QString utf8(const QByteArray &text)
{
    return QString::fromUtf8(text);
}

// Texts of JSON are written with single quotes here.
QByteArray quoted(QByteArray text)
{
    return text.replace('\'', '"');
}

QJsonObject json(const QByteArray &text)
{
    return QJsonDocument::fromJson(quoted(text)).object();
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
    void initTestCase()
    {
        service_ = std::make_unique<DemoService>(optionsFor(folder_));
        QCOMPARE(service_->start(), QString());
    }
    void init() { QCOMPARE(service_->reset(), QString()); }

    void answers_data()
    {
        // expected: code, EID and the ids of the list
        addColumns<QByteArray, QByteArray, QString>({"action", "body", "expected"});

        const auto row = [](const char *name, const char *action, const QByteArray &body,
                            const char *expected) {
            newRow(name, QByteArray(action), body, utf8(expected));
        };
        const char login[] = "public&a=dologin";
        const QByteArray first = "username=demo01&password=";
        row("three branches", login, first + "abc123" + session, "1 3101 101,102,103");
        row("wrong password", login, first + "abc1234" + session, "0  ");
        row("password split by an ampersand", login, first + "&abc123" + session, "0  ");

        const char change[] = "public&a=switch_shop";
        row("change to a branch", change, "shopid=102" + session, "1 3102 ");
        row("change to no branch", change, "shopid=999" + session, "0  ");
        row("change to a branch of others", change,
            "shopid=101" + QByteArray(session).replace("9001", "9002"), "0  ");

        const char persons[] = "order&a=get_persons";
        const char everybody[] = "1  1011,1012,1013,1014";
        row("branch alone", persons, "shopid=101" + session, everybody);
        row("other person", persons, "shopid=101&eid=3101&personid=3103" + session, "0  ");
        row("no branch", persons, "eid=3101&superid=7001" + session, "0  ");
        row("wrong token", persons, "shopid=101&token=1&uid=9001", "0  ");

        const char list[] = "order&a=order_list";
        row("order number", list, "keyword=TS10001&searchtype=1" + flagship, "1  50001,50002");
        row("woman's name", list, "keyword=A%26B%2BC%25&searchtype=1" + flagship, "1  50003");
        row("other branch", list, "keyword=TS10001&searchtype=1" + riverside, "1  ");
        row("selection date", list, "keyword=2024-03-15&searchtype=5" + riverside, "1  50007");
        row("not a day", list, "keyword=TS10001&searchtype=4" + riverside, "0  ");

        const char batch[] = "order&a=savepicpath_batch";
        const QByteArray none = "imgnames=[]&type=5&localpath=x";
        row("another branch's order", batch, none + "&order_photo_id=800001" + riverside, "0  ");
        row("ids of two orders", batch, none + "&orderid=50002&order_photo_id=800001" + flagship,
            "0  ");
        row("person of another branch", batch, none + "&person_id=3102" + firstOrder, "0  ");
        row("unknown type", batch, "imgnames=[]&type=7&localpath=x" + firstOrder, "0  ");
        row("broken list", batch, "imgnames=[{&type=5&localpath=x" + firstOrder, "0  ");
        row("no raw list", batch, "imgnames=[]&type=1&localpath=x" + firstOrder, "0  ");
    }

    void answers()
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

    void decodesAndRecords()
    {
        // More than the server library takes by itself.
        const QByteArray longText(100000, 'x');
        for (const auto &[value, decoded] :
             {std::pair<QByteArray, QByteArray>("A%26B%2BC%25", "A&B+C%"),
              {"a+b=c", "a b=c"},
              {"周 💍\\原片", "周 💍\\原片"},
              {"100% %zz %4", "100% %zz %4"},
              {"A&B", "A"},
              {longText, longText}}) {
            const QByteArray body = "value=" + value + flagship;
            QCOMPARE(post("order&a=nonsense", body).code(), "0"_s);
            const QJsonValue record = service_->requests("nonsense"_s).last();
            QCOMPARE(record[u"fields"][u"value"].toString().toUtf8(), decoded);
            QCOMPARE(record[u"fields"][u"shopid"].toString(), "101"_s);
            QCOMPARE(record[u"query"].toString(), "g=OrvelleDPc&m=order&a=nonsense"_s);
            QCOMPARE(QByteArray::fromBase64(record[u"body64"].toString().toLatin1()), body);
        }
    }

    void misbehaves_data()
    {
        // body: a pattern
        addColumns<int, QString, bool, bool>({"error", "body", "parses", "acts"});

        const auto row = [](const char *kind, int error, const char *body, bool parses, bool acts) {
            newRow(kind, error, utf8(quoted(body)), parses, acts);
        };
        const int fine = QNetworkReply::NoError;
        row("http-error", QNetworkReply::InternalServerError, "^$", false, false);
        row("drop", QNetworkReply::RemoteHostClosedError, "^$", false, false);
        row("drop-silent", QNetworkReply::RemoteHostClosedError, "^$", false, false);
        row("broken-json", fine, "^\\{.*[^}]$", false, true);
        row("html", fine, "^<html>", false, true);
        row("empty", fine, "^$", false, true);
        row("array", fine, "^\\[\\{.*'code':'1'.*\\}\\]$", true, true);
        row("truncated-utf8", fine, "^\\{.*'code':'1'.*\\}$", false, true);
        row("refuse", fine, "'code':'0','message':'not now','msg':'not now'", true, false);
        row("code-number", fine, "'code':1,", true, true);
    }

    void misbehaves()
    {
        QFETCH(int, error);
        QFETCH(QString, body);
        const QByteArray kind = QTest::currentDataTag();
        const bool counts = kind != "drop-silent"; // the client itself sends these again
        const QByteArray order = "{'action':'saveorderphotopath','message':'not now','kind':'";
        service_->misbehave(json(order + kind + (counts ? "'}" : "','times':-1}")));
        const Answer bad = post("order&a=saveorderphotopath", "path=a%26b" + firstOrder);
        QCOMPARE(bad.error, error);
        const QRegularExpression expected(body);
        const QString text = QString::fromUtf8(bad.body);
        const auto found = expected.match(text); // clazy:exclude=use-static-qregularexpression
        QVERIFY2(found.hasMatch(), bad.body.constData());
        QTEST(!QJsonDocument::fromJson(bad.body).isNull(), "parses");
        QTEST(firstOrderState()[u"folderpath"].toString() == u"a&b", "acts");
        QCOMPARE(service_->requests().at(0)[u"misbehaviour"].toString(), utf8(kind));
        QVERIFY(service_->requests().size() == 1 || !counts);

        if (!counts)
            service_->misbehave(json(order + "none'}"));
        post("order&a=saveorderphotopath", "path=b" + firstOrder);
        QCOMPARE(firstOrderState()[u"folderpath"].toString(), "b"_s);
    }

    void removesOnlyItsOwn()
    {
        const QTemporaryDir others;
        const QString photo = others.filePath("share/wedding.jpg"_s);
        writeFile(photo, QByteArray(1, 'x'));
        QVERIFY(!DemoService(optionsFor(others)).start().isEmpty());
        QVERIFY(QFileInfo::exists(photo));

        const QJsonObject before = service_->state();
        const QString share = folder_.filePath("share"_s);
        const QString link = share + "/link"_s;
        const QString left = share + "/滨江店/2024/a.jpg"_s;
        writeFile(left);
        QVERIFY(QFile::link(others.path(), link));
        post("order&a=saveorderphotopath", "path=x" + firstOrder);
        QCOMPARE(service_->reset(), QString());
        QVERIFY(service_->state() == before && service_->requests().isEmpty());
        QVERIFY(!QFileInfo::exists(left) && !QFileInfo::exists(link));
        QVERIFY(QFileInfo::exists(photo));
    }

private:
    QNetworkReply *send(const QByteArray &action, const QByteArray &body)
    {
        QNetworkRequest request(
            QUrl(service_->url() + "/index.php?g=OrvelleDPc&m="_s + QString::fromLatin1(action)));
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          "application/x-www-form-urlencoded"_s);
        return network_.post(request, body);
    }

    Answer finished(QNetworkReply *reply) const
    {
        if (!QTest::qWaitFor([reply] { return reply->isFinished(); }, 20000))
            reply->abort();
        reply->deleteLater();
        return {reply->error(), reply->readAll()};
    }

    Answer post(const QByteArray &action, const QByteArray &body)
    {
        return finished(send(action, body));
    }
    Answer search(const QByteArray &keyword, const QByteArray &ids)
    {
        return post("order&a=order_list", "searchtype=1&keyword=" + keyword + ids);
    }
    QJsonValue firstOrderState() const { return service_->state()[u"orders"].toArray()[0]; }

    QTemporaryDir folder_;
    std::unique_ptr<DemoService> service_;
    QNetworkAccessManager network_;
};

QTEST_GUILESS_MAIN(TestDemo)
#include "test_demo.moc"
