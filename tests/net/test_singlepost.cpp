#include "net/singlepost.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>
#include <QtTest>

#ifndef Q_OS_WIN
#include "demo/certificates.h"

#include <openssl/pem.h>
#endif

namespace {

/// What becomes of a request that arrives.
enum class Then { Answer, AnswerAndEnd, End, EndAtHead, Reset };

#ifdef Q_OS_WIN // has no certificates to show
const QVector<bool> ways{false};
void encrypt(QSslSocket *)
{
}
#else
const QVector<bool> ways{false, true};
void encrypt(QSslSocket *peer)
{
    static const demo::Certificates made = demo::Certificates::make();
    unsigned char *der = nullptr;
    const int length = i2d_X509(made.server.get(), &der);
    const QByteArray certificate(reinterpret_cast<const char *>(der), length);
    OPENSSL_free(der);
    EVP_PKEY_up_ref(made.serverKey.get()); // for the key, which takes it over
    peer->setLocalCertificate(QSslCertificate(certificate, QSsl::Der));
    peer->setPrivateKey(QSslKey(Qt::HANDLE(made.serverKey.get())));
    peer->startServerEncryption();
}
#endif

/// Serves one connection at a time, on the test's own thread.
class Server : public QTcpServer
{
public:
    explicit Server(bool tls) : tls_(tls)
    {
        listen(QHostAddress::LocalHost);
        request.setUrl(
            QUrl("%1://127.0.0.1:%2/a"_s.arg(tls ? "https"_s : "http"_s).arg(serverPort())));
        request.setHeader(QNetworkRequest::ContentTypeHeader, "text/plain"_s);
        QSslConfiguration trusting = request.sslConfiguration();
        trusting.setPeerVerifyMode(QSslSocket::VerifyNone);
        request.setSslConfiguration(trusting);
    }

    QNetworkRequest request; ///< to here
    Then then = Then::Answer;
    int bodyBytes = 0; ///< that a request has
    int arrived = 0;

protected:
    void incomingConnection(qintptr handle) override
    {
        received_.clear();
        auto *peer = new QSslSocket(this);
        peer->setSocketDescriptor(handle);
        connect(peer, &QSslSocket::readyRead, this, [this, peer] { read(peer); });
        if (tls_)
            encrypt(peer);
    }

private:
    void read(QSslSocket *peer)
    {
        received_ += peer->readAll();
        const int head = received_.indexOf("\r\n\r\n");
        if (head < 0 || (then != Then::EndAtHead && received_.size() < head + 4 + bodyBytes))
            return;
        ++arrived;
        received_.clear();
        if (then == Then::Answer || then == Then::AnswerAndEnd)
            peer->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
        if (then == Then::Reset)
            peer->abort();
        else if (then != Then::Answer)
            peer->disconnectFromHost();
    }

    const bool tls_;
    QByteArray received_;
};

} // namespace

Q_DECLARE_METATYPE(QVector<Then>)

class TestSinglePost : public QObject
{
    Q_OBJECT

private slots:
    void arrivesOnce_data()
    {
        addColumns<bool, QVector<Then>, int>({"tls", "answers", "bytes"});
        constexpr int large = 1000 * 1000;
        for (const bool tls : ways) {
            const auto row = [tls](const char *what, const QVector<Then> &answers, int bytes) {
                newRow(qPrintable((tls ? "TLS, "_s : "plain, "_s) + QLatin1String(what)), tls,
                       answers, bytes);
            };
            row("first", {Then::End}, 10);
            row("large", {Then::End}, large);
            row("head only", {Then::EndAtHead}, large);
            row("reset", {Then::Reset}, 10);
            row("kept alive", {Then::Answer, Then::End, Then::Answer}, 10);
            row("kept alive, large", {Then::Answer, Then::End, Then::Answer}, large);
            row("ended when idle", QVector<Then>(20, Then::AnswerAndEnd), 10);
        }
    }

    void arrivesOnce()
    {
        QFETCH(bool, tls);
        QFETCH(QVector<Then>, answers);
        QFETCH(int, bytes);
        Server server(tls);
        server.bodyBytes = bytes;
        QNetworkAccessManager manager;
        for (int at = 0; at < answers.size(); ++at) {
            server.then = answers.at(at);
            const bool isAnswered =
                server.then == Then::Answer || server.then == Then::AnswerAndEnd;
            const std::unique_ptr<QNetworkReply> reply(
                postOnce(&manager, server.request, QByteArray(bytes, 'x')));
            QVERIFY(QSignalSpy(reply.get(), &QNetworkReply::finished).wait(60000));
            QCOMPARE(reply->error() == QNetworkReply::NoError, isAnswered);
            QCOMPARE(reply->readAll(), QByteArray(isAnswered ? "{}" : ""));
            QCOMPARE(server.arrived, at + 1);
        }
    }
};

QTEST_GUILESS_MAIN(TestSinglePost)
#include "test_singlepost.moc"
