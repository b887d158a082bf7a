#include "net/singlepost.h"
#include "tests/net/smallserver.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QtTest>

namespace {

using Then = SmallServer::Then;

} // namespace

Q_DECLARE_METATYPE(QVector<SmallServer::Then>)

class TestSinglePost : public QObject
{
    Q_OBJECT

private slots:
    void arrivesOnce_data()
    {
        addColumns<bool, QVector<Then>, int>({"tls", "answers", "bytes"});
        const QVector<bool> ways = SmallServer::ways();
        for (const bool tls : ways) {
            const auto row = [tls](const char *what, const QVector<Then> &answers, int bytes) {
                newRow(qPrintable((tls ? "TLS, "_s : "plain, "_s) + QLatin1String(what)), tls,
                       answers, bytes);
            };
            const Then answer = Then::Answer;
            row("first", {Then::End}, 10);
            row("large", {Then::End}, 1000 * 1000);
            row("head only", {Then::EndAtHead}, 1000 * 1000);
            row("reset", {Then::Reset}, 10);
            row("kept alive", {answer, Then::End, answer}, 10);
            row("kept alive, large", {answer, Then::End, answer}, 1000 * 1000);
            row("ended when idle", QVector<Then>(20, Then::AnswerAndEnd), 10);
        }
    }

    void arrivesOnce()
    {
        QFETCH(bool, tls);
        QFETCH(QVector<Then>, answers);
        QFETCH(int, bytes);
        SmallServer server(tls);
        QNetworkAccessManager manager;
        for (int at = 0; at < answers.size(); ++at) {
            server.setThen(answers.at(at));
            QNetworkRequest request(server.url());
            request.setHeader(QNetworkRequest::ContentTypeHeader, "text/plain"_s);
            QSslConfiguration trusting = request.sslConfiguration();
            trusting.setPeerVerifyMode(QSslSocket::VerifyNone);
            request.setSslConfiguration(trusting);
            const QByteArray body(bytes, 'x');
            const std::unique_ptr<QNetworkReply> reply(postOnce(&manager, request, body));
            QVERIFY(QSignalSpy(reply.get(), &QNetworkReply::finished).wait(60000));
            const bool isAnswered =
                answers.at(at) == Then::Answer || answers.at(at) == Then::AnswerAndEnd;
            QCOMPARE(reply->error() == QNetworkReply::NoError, isAnswered);
            QCOMPARE(reply->readAll(), QByteArray(isAnswered ? "{}" : ""));
            QCOMPARE(server.heads(), at + 1);
            if (answers.at(at) != Then::EndAtHead)
                QCOMPARE(server.lastBody(), body);
        }
    }
};

QTEST_GUILESS_MAIN(TestSinglePost)
#include "test_singlepost.moc"
