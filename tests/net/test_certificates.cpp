#include "app/context/installation.h"
#include "net/servicecall.h"
#include "net/tlssettings.h"
#include "tests/support/text.h"

#include <QtTest>

/// Against a service with a certificate of its own making; run once for each way in which an
/// installation can be set up.
class TestCertificates : public QObject
{
    Q_OBJECT

private slots:
    void trustsWhatTheInstallationSays()
    {
        const Installation &installation = Installation::current();
        const bool trusted = !installation.caFiles.isEmpty() || !installation.verifiesCertificates;
        QVector<ServiceReply> replies;
        callService(this, "&m=public&a=dologin"_s, "username=demo01&password=abc123",
                    [&replies](const ServiceReply &reply) { replies.append(reply); });
        QTRY_COMPARE(replies.size(), 1);
        QCOMPARE(int(replies.first().outcome),
                 int(trusted ? ServiceReply::Outcome::Success
                             : ServiceReply::Outcome::CertificateRefused));
        QCOMPARE(replies.first().message.isEmpty(), false); // the reason, or the service's own word
    }

    void goesOnToAFileThatHoldsCertificates()
    {
        const QStringList &known = Installation::current().caFiles;
        const QStringList useless{"/no/such/file.pem"_s, QCoreApplication::applicationFilePath()};
        QCOMPARE(certificatesOf(useless + known), certificatesOf(known));
        QCOMPARE(certificatesOf(known).isEmpty(), known.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestCertificates)
#include "test_certificates.moc"
