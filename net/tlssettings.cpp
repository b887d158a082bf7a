#include "net/tlssettings.h"

#include "app/context/installation.h"
#include "app/context/logging.h"

#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QSslSocket>

namespace {

QSslConfiguration tlsSettings()
{
    const Installation &installation = Installation::current();
    QSslConfiguration settings = QSslConfiguration::defaultConfiguration();
    settings.setProtocol(QSsl::TlsV1_2OrLater);
    settings.setPeerVerifyMode(installation.verifiesCertificates ? QSslSocket::VerifyPeer
                                                                 : QSslSocket::VerifyNone);
    settings.setCaCertificates(settings.caCertificates() + certificatesOf(installation.caFiles));
    return settings;
}

} // namespace

void applyTlsSettings(QNetworkRequest *request)
{
    // Reading the system's certificates is slow and the installation does not change.
    static const QSslConfiguration settings = tlsSettings();
    request->setSslConfiguration(settings);
}

QList<QSslCertificate> certificatesOf(const QStringList &files)
{
    for (const QString &file : files) {
        const QList<QSslCertificate> found =
            QSslCertificate::fromPath(file, QSsl::Pem, QSslCertificate::PatternSyntax::FixedString);
        if (!found.isEmpty())
            return found;
        qCWarning(lcTessavo) << "no certificates in" << file;
    }
    return {};
}
