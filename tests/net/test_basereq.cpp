#include "app/context/accountcontext.h"
#include "net/basereq.h"
#include "net/servicecall.h"
#include "tests/support/democlient.h"

#include <QtTest>

namespace {

const QString login = QStringLiteral("&m=public&a=dologin");
const QByteArray rightLogin = "username=demo01&password=abc123";

} // namespace

class TestBaseReq : public QObject
{
    Q_OBJECT

private slots:
    void init() { demo_.reset(); }
    void appendsTheSessionFields_data();
    void appendsTheSessionFields();
    void unusableAnswers_data();
    void unusableAnswers();
    void arraysAreHandedOverAsFailure();
    void anAbortedRequestEndsOnce();
    void theLatestCallWins();
    void aDeadOwnerIsNotCalledBack();
    void refusalsCarryTheServicesText();

private:
    DemoClient demo_;
};

void TestBaseReq::appendsTheSessionFields_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("group");
    QTest::newRow("body") << login << QByteArray("a=1") << "g=OrvelleDPc";
    QTest::newRow("empty") << login << QByteArray() << "g=OrvelleDPc";
    QTest::newRow("update") << QStringLiteral("&m=Version&a=check_update") << QByteArray("a=1")
                            << "g=publicapi";
    QTest::newRow("update, small v")
        << QStringLiteral("&m=version&a=check_update") << QByteArray("a=1") << "g=OrvelleDPc";
}

void TestBaseReq::appendsTheSessionFields()
{
    QFETCH(QString, action);
    QFETCH(QByteArray, body);
    QFETCH(QString, group);
    AccountContext::uid = QStringLiteral("u5");
    BaseReq request;
    bool answered = false;
    request.sendRequest(action, body,
                        [&answered](bool, const QJsonDocument &) { answered = true; });
    QTRY_VERIFY(answered);
    const QJsonObject sent = demo_.requests().last().toObject();
    QCOMPARE(sent.value(QStringLiteral("body")).toString().toUtf8(),
             body + "&token=5f0c2a9e7d41b6839a0e4c7b21f3d8a6&version=1.4.2&architecture=64&uid=u5"
                    "&device=windows");
    QCOMPARE(sent.value(QStringLiteral("query")).toString(), group + action);
}

void TestBaseReq::unusableAnswers_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"http-error", "drop", "broken-json", "html", "empty", "array"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void TestBaseReq::unusableAnswers()
{
    QFETCH(QString, kind);
    demo_.misbehave(QStringLiteral("dologin"), kind);
    QVector<ServiceReply> replies;
    callService(this, login, rightLogin,
                [&replies](const ServiceReply &reply) { replies.append(reply); });
    QTRY_COMPARE(replies.size(), 1);
    QCOMPARE(int(replies.first().outcome), int(ServiceReply::Outcome::NoAnswer));
    QVERIFY(replies.first().object.isEmpty());
}

void TestBaseReq::arraysAreHandedOverAsFailure()
{
    demo_.misbehave(QStringLiteral("dologin"), QStringLiteral("array"));
    BaseReq request;
    int calls = 0;
    request.sendRequest(login, rightLogin, [&calls](bool ok, const QJsonDocument &document) {
        ++calls;
        QVERIFY(!ok);
        QVERIFY(document.isArray());
    });
    QTRY_COMPARE(calls, 1);
}

void TestBaseReq::anAbortedRequestEndsOnce()
{
    demo_.misbehave(QStringLiteral("dologin"), QStringLiteral("hold"));
    BaseReq request;
    int calls = 0;
    request.sendRequest(login, rightLogin, [&calls](bool ok, const QJsonDocument &) {
        ++calls;
        QVERIFY(!ok);
    });
    request.abortRequest();
    QTRY_COMPARE(calls, 1);
    demo_.release();
}

void TestBaseReq::theLatestCallWins()
{
    demo_.misbehave(QStringLiteral("dologin"), QStringLiteral("hold"));
    LatestCall call(this);
    QStringList answered;
    call.start(login, rightLogin, [&](const ServiceReply &) { answered += QStringLiteral("1"); });
    QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
    call.start(login, rightLogin, [&](const ServiceReply &reply) {
        answered += reply.isSuccess() ? QStringLiteral("2") : QStringLiteral("failed");
    });
    QTRY_COMPARE(answered, QStringList(QStringLiteral("2")));
    QVERIFY(!call.isActive());
    demo_.release();
    call.start(login, rightLogin, [&](const ServiceReply &) { answered += QStringLiteral("3"); });
    call.cancel();
    QVERIFY(!call.isActive());
    demo_.state(); // a round trip: anything still to come would have come
    QCOMPARE(answered.size(), 1);
}

void TestBaseReq::aDeadOwnerIsNotCalledBack()
{
    demo_.misbehave(QStringLiteral("dologin"), QStringLiteral("hold"));
    auto *owner = new QObject;
    bool called = false;
    callService(owner, login, rightLogin, [&called](const ServiceReply &) { called = true; });
    delete owner;
    demo_.release();
    demo_.state();
    QVERIFY(!called);
}

void TestBaseReq::refusalsCarryTheServicesText()
{
    demo_.misbehave(QStringLiteral("dologin"), QStringLiteral("refuse"),
                    {{QStringLiteral("message"), QStringLiteral("没有权限")}});
    ServiceReply reply;
    callService(this, login, rightLogin, [&reply](const ServiceReply &came) { reply = came; });
    QTRY_COMPARE(int(reply.outcome), int(ServiceReply::Outcome::Refused));
    QCOMPARE(reply.message, QStringLiteral("没有权限"));

    demo_.misbehave(QStringLiteral("dologin"), QStringLiteral("code-number"));
    reply = {};
    callService(this, login, rightLogin, [&reply](const ServiceReply &came) { reply = came; });
    QTRY_COMPARE(int(reply.outcome), int(ServiceReply::Outcome::Refused));
}

QTEST_GUILESS_MAIN(TestBaseReq)
#include "test_basereq.moc"
