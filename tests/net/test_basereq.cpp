#include "app/context/accountcontext.h"
#include "net/basereq.h"
#include "net/servicecall.h"
#include "net/singlepost.h"
#include "tasks/background.h"
#include "tests/support/datarows.h"
#include "tests/support/democlient.h"
#include "tests/support/loglines.h"
#include "tests/support/text.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

namespace {

const QString login = "&m=public&a=dologin"_s;
const QByteArray rightLogin = "username=demo01&password=abc123";

} // namespace

class TestBaseReq : public QObject
{
    Q_OBJECT

private slots:
    void init() { demo_.reset(); }

    void appendsTheSessionFields_data()
    {
        addColumns<QString, QByteArray, QString>({"action", "body", "group"});
        newRow("body", login, QByteArray("a=1"), "g=OrvelleDPc");
        newRow("empty", login, QByteArray(), "g=OrvelleDPc");
        newRow("update", "&m=Version&a=check_update", QByteArray("a=1"), "g=publicapi");
        newRow("update, small v", "&m=version&a=check_update", QByteArray("a=1"), "g=OrvelleDPc");
    }

    void appendsTheSessionFields()
    {
        QFETCH(QString, action);
        QFETCH(QByteArray, body);
        QFETCH(QString, group);
        AccountContext::uid = "u5"_s;
        BaseReq request;
        bool answered = false;
        request.sendRequest(action, body,
                            [&answered](bool, const QJsonDocument &) { answered = true; });
        QTRY_VERIFY(answered);
        const QJsonObject sent = demo_.requests().last().toObject();
        QCOMPARE(sent.value("body"_s).toString().toUtf8(),
                 body +
                     "&token=5f0c2a9e7d41b6839a0e4c7b21f3d8a6&version=1.4.2&architecture=64&uid=u5"
                     "&device=windows");
        QCOMPARE(sent.value("query"_s).toString(), group + action);
    }

    void logsOfABodyWhatMayBeRead()
    {
        const LogLines log;
        BaseReq request;
        const QByteArray start = "username=a&password=" + QByteArray(100, 's') + "&token=t&b=";
        request.sendRequest(login, start + QByteArray(5000, 'x'),
                            [](bool, const QJsonDocument &) {});
        request.sendRequest(login, "password=p", [](bool, const QJsonDocument &) {});
        request.abortRequest();
        const QStringList lines = log.all().filter("paras: "_s);
        QCOMPARE(lines.size(), 2);
        const QString whole = "\"username=a&password=***&token=***&b="_s +
                              QString(4096 - start.size(), QLatin1Char('x')) + "\" "_s;
        QVERIFY2(lines.at(0).startsWith("paras:  "_s + whole), qUtf8Printable(lines.at(0)));
        QVERIFY(lines.at(0).section(QLatin1Char(' '), -1).toInt() > start.size() + 5000);
        QVERIFY2(lines.at(1).startsWith("paras:  \"password=***&token=***&version="_s),
                 qUtf8Printable(lines.at(1)));
    }

    void unusableAnswers_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind :
             {"http-error", "drop", "drop-silent", "broken-json", "html", "empty", "array"})
            newRow(kind, QString::fromLatin1(kind));
    }

    void unusableAnswers()
    {
        QFETCH(QString, kind);
        demo_.misbehave("dologin"_s, kind);
        QVector<ServiceReply> replies;
        callService(this, login, rightLogin,
                    [&replies](const ServiceReply &reply) { replies.append(reply); });
        QTRY_COMPARE(replies.size(), 1);
        QCOMPARE(int(replies.first().outcome), int(ServiceReply::Outcome::NoAnswer));
        QVERIFY(replies.first().object.isEmpty());
        QCOMPARE(demo_.requests().size(), 1); // it may have acted
    }

    /// Whoever answers in the service's place must not be able to send a password on.
    void aRedirectTakesNoBodyAlong()
    {
        QTcpServer service;
        QTcpServer elsewhere;
        QVERIFY(service.listen(QHostAddress::LocalHost));
        QVERIFY(elsewhere.listen(QHostAddress::LocalHost));
        connect(&service, &QTcpServer::newConnection, this, [&] {
            service.nextPendingConnection()->write(
                "HTTP/1.1 307 Temporary Redirect\r\nContent-Length: 0\r\nLocation: http://127.0.0.1:" +
                QByteArray::number(elsewhere.serverPort()) + "/\r\n\r\n");
        });
        QNetworkAccessManager manager;
        QNetworkRequest request(QUrl("http://127.0.0.1:%1/"_s.arg(service.serverPort())));
        QNetworkReply *reply = postOnce(&manager, request, rightLogin);
        QTRY_VERIFY(reply->isFinished());
        demo_.state(); // a round trip: a connection that was begun would be there
        QVERIFY(!elsewhere.hasPendingConnections());
        delete reply;
    }

    void arraysAreHandedOverAsFailure()
    {
        demo_.misbehave("dologin"_s, "array"_s);
        BaseReq request;
        int calls = 0;
        request.sendRequest(login, rightLogin, [&calls](bool ok, const QJsonDocument &document) {
            ++calls;
            QVERIFY(!ok);
            QVERIFY(document.isArray());
        });
        QTRY_COMPARE(calls, 1);
    }

    void anAbortedRequestEndsOnce()
    {
        demo_.hold("dologin"_s);
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

    void theLatestCallWins()
    {
        demo_.hold("dologin"_s);
        LatestCall call(this);
        QStringList answered;
        call.start(login, rightLogin, [&](const ServiceReply &) { answered += "1"_s; });
        QTRY_COMPARE(demo_.held(), 1);
        call.start(login, rightLogin, [&](const ServiceReply &reply) {
            answered += reply.isSuccess() ? "2"_s : "failed"_s;
        });
        QTRY_COMPARE(answered, QStringList("2"_s));
        QVERIFY(!call.isActive());
        demo_.release();
        call.start(login, rightLogin, [&](const ServiceReply &) { answered += "3"_s; });
        call.cancel();
        QVERIFY(!call.isActive());
        demo_.state(); // a round trip: anything still to come would have come
        QCOMPARE(answered.size(), 1);
    }

    void aDeadOwnerIsNotCalledBack()
    {
        demo_.hold("dologin"_s);
        auto *owner = new QObject;
        bool called = false;
        callService(owner, login, rightLogin, [&called](const ServiceReply &) { called = true; });
        delete owner;
        demo_.release();
        demo_.state();
        QVERIFY(!called);
    }

    void refusalsCarryTheServicesText()
    {
        demo_.refuse("dologin"_s, "没有权限"_s);
        ServiceReply reply;
        callService(this, login, rightLogin, [&reply](const ServiceReply &came) { reply = came; });
        QTRY_COMPARE(int(reply.outcome), int(ServiceReply::Outcome::Refused));
        QCOMPARE(reply.message, "没有权限"_s);

        demo_.misbehave("dologin"_s, "code-number"_s);
        reply = {};
        callService(this, login, rightLogin, [&reply](const ServiceReply &came) { reply = came; });
        QTRY_COMPARE(int(reply.outcome), int(ServiceReply::Outcome::Refused));
    }

    void images_data()
    {
        addColumns<QString, QString, QString>({"kind", "url", "error"});
        const QString photo = AccountContext::baseUrl + "/photos/8000011001.jpg"_s;
        newRow("fine", QString(), photo, QString());
        newRow("too large", "huge-body"_s, photo, "图片下载失败:图片过大"_s);
        newRow("empty", "empty"_s, photo, "图片下载失败:没有内容"_s);
        newRow("error", "http-error"_s, photo, "图片下载失败:服务端返回 HTTP 500"_s);
        newRow("dropped", "drop-silent"_s, photo, "图片下载失败:连接中断"_s);
        newRow("refused", QString(), "http://127.0.0.1:1/?token=x"_s, "图片下载失败:连接被拒绝"_s);
        newRow("sent on", "redirect /photos/8000011002.jpg", photo, QString());
        newRow("sent away with the token",
               "redirect http://localhost:1/?t="_s + AccountContext::apiToken, photo,
               "图片下载失败:图片地址转到了不允许的地址"_s);
        newRow("file", QString(), "file:///etc/hostname"_s, "图片下载失败:不是网络地址"_s);
        newRow("bundled", QString(), "qrc:/x.png"_s, "图片下载失败:不是网络地址"_s);
        newRow("no host", QString(), "http:///x.png"_s, "图片下载失败:不是网络地址"_s);
    }

    void images()
    {
        QFETCH(QString, kind);
        QFETCH(QString, url);
        QFETCH(QString, error);
        const QString message = kind.section(QLatin1Char(' '), 1);
        if (!kind.isEmpty())
            demo_.misbehave("image"_s, kind.section(QLatin1Char(' '), 0, 0),
                            {{"times"_s, message.isEmpty() ? -1 : 1}, {"message"_s, message}});
        BaseReq request;
        QStringList told;
        request.downloadImageAsDataUrl(
            url, [&told](bool ok, const QString &dataUrl, const QString &why) {
                told += ok ? dataUrl.left(22) : why;
                QCOMPARE(dataUrl.isEmpty(), !ok);
            });
        QVERIFY(told.isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(told.size(), 1, 60000);
        QVERIFY2(told.first().startsWith(error.isEmpty() ? "data:image/jpeg;base64"_s : error),
                 qPrintable(told.first()));
    }

    void callbacksMayDeleteTheirRequest_data()
    {
        addColumns<QString, bool>({"kind", "aborted"});
        newRow("answered", QString(), false);
        newRow("no answer", "drop", false);
        newRow("aborted", QString(), true);
        newRow("too large", "huge-body", false);
        newRow("sent away", "redirect file:///etc/hostname", false);
    }

    /// Told by the sanitizers, and by whatever else looks at memory.
    void callbacksMayDeleteTheirRequest()
    {
        QFETCH(QString, kind);
        QFETCH(bool, aborted);
        if (!kind.isEmpty())
            demo_.misbehave("image"_s, kind.section(QLatin1Char(' '), 0, 0),
                            {{"message"_s, kind.section(QLatin1Char(' '), 1)}});
        QPointer<BaseReq> request = new BaseReq;
        request->downloadImage(AccountContext::baseUrl + "/photos/8000011001.jpg"_s,
                               [&request](const QByteArray &, const QString &) { delete request; });
        if (aborted)
            request->abortRequest();
        QTRY_VERIFY_WITH_TIMEOUT(!request, 60000);
        demo_.state(); // whatever is still to come of it comes
    }

    void repliesDoNotWaitForDisks()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, this, [&server] {
            const QByteArray body = "{\"a\":\"" + QByteArray(1024 * 1024, 'x') + "\"}";
            server.nextPendingConnection()->write(
                "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) +
                "\r\n\r\n" + body);
        });
        QObject context;
        QSemaphore gate;
        constexpr int deadShares = 100;
        for (int share = 0; share < deadShares; ++share)
            onDisk(
                &context, "//dead%1/photos"_s.arg(share), [&gate] { gate.acquire(); }, [] {});
        BaseReq request;
        bool read = false;
        request.sendGetRequest("http://127.0.0.1:%1/a"_s.arg(server.serverPort()),
                               [&read](bool ok, const QJsonDocument &) { read = ok; });
        const bool came = QTest::qWaitFor([&read] { return read; }, 60000);
        gate.release(deadShares);
        diskPool().waitForDone();
        QVERIFY(came);
    }

    void endlessRepliesAreGivenUp()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, this, [&server] {
            QTcpSocket *peer = server.nextPendingConnection();
            const QByteArray piece(1024 * 1024, ' ');
            peer->write("HTTP/1.1 200 OK\r\n\r\n{" + piece);
            connect(peer, &QTcpSocket::bytesWritten, peer, [peer, piece] {
                if (peer->bytesToWrite() == 0)
                    peer->write(piece);
            });
        });
        BaseReq request;
        request.setMostReplyBytes(16 * 1024 * 1024);
        bool ended = false;
        request.sendGetRequest("http://127.0.0.1:%1/a"_s.arg(server.serverPort()),
                               [&ended](bool ok, const QJsonDocument &) { ended = !ok; });
        QTRY_VERIFY_WITH_TIMEOUT(ended, 60000);
        QVERIFY(request.isTooLarge());
    }

    /// What comes in few bytes may unpack into any number.
    void packedImages_data()
    {
        addColumns<int, bool>({"megabytes", "taken"});
        newRow("as large as a picture may be", 64, true);
        newRow("larger", 65, false);
    }

    void packedImages()
    {
        QFETCH(int, megabytes);
        QFETCH(bool, taken);
        const QByteArray packed = qCompress(QByteArray(megabytes * 1024 * 1024, 'x')).mid(4);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, this, [&server, packed] {
            QTcpSocket *peer = server.nextPendingConnection();
            peer->write("HTTP/1.1 200 OK\r\nContent-Encoding: deflate\r\nContent-Length: " +
                        QByteArray::number(packed.size()) + "\r\n\r\n" + packed);
        });
        BaseReq request;
        QString answer = "nothing"_s;
        int size = 0;
        request.downloadImage("http://127.0.0.1:%1/a"_s.arg(server.serverPort()),
                              [&](const QByteArray &image, const QString &error) {
                                  answer = error;
                                  size = image.size();
                              });
        QTRY_COMPARE_WITH_TIMEOUT(answer, taken ? QString() : "图片下载失败:图片过大"_s, 60000);
        QCOMPARE(size, taken ? megabytes * 1024 * 1024 : 0);
    }

private:
    DemoClient demo_;
};

QTEST_GUILESS_MAIN(TestBaseReq)
#include "test_basereq.moc"
