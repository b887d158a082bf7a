#include "app/context/installation.h"

#include "app/context/inifile.h"
#include "app/context/logging.h"
#include "platform/programfile.h"

#include <QFileInfo>
#include <QUrl>

namespace {

bool isServiceAddress(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && !url.host().isEmpty() && !url.hasQuery() && !url.hasFragment() &&
           (url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http"));
}

/// The first of what the environment and the file say that is an address.
QString serviceAddress(const QStringList &said)
{
    for (const QString &text : said) {
        QString address = text.trimmed();
        if (address.isEmpty())
            continue;
        while (address.endsWith(QLatin1Char('/')))
            address.chop(1);
        if (isServiceAddress(address))
            return address;
        qCWarning(lcTessavo) << "no address of a service:" << text;
    }
    return QString::fromUtf8(TESSAVO_DEFAULT_SERVICE_URL);
}

/// A path in the file is meant from where the file lies, wherever the program is started.
QString besideFile(const QString &path, const QString &iniFile)
{
    if (path.isEmpty() || QFileInfo(path).isAbsolute())
        return path;
    return QFileInfo(iniFile).path() + QLatin1Char('/') + path;
}

/// The first of what the environment and the file say that means anything.
bool verifies(const QStringList &said)
{
    const QLatin1String none("none");
    for (const QString &text : said) {
        if (text == none || text == QLatin1String("yes"))
            return text != none;
        if (!text.isEmpty())
            qCWarning(lcTessavo) << "TLS verification is neither yes nor none:" << text;
    }
    return true;
}

} // namespace

const Installation &Installation::current()
{
    static const Installation settings = read();
    return settings;
}

Installation Installation::read(const QString &iniFile)
{
    const QMap<QString, QString> file =
        iniFile.isEmpty() ? QMap<QString, QString>() : readIniFile(iniFile);
    Installation settings;
    settings.serviceUrl = serviceAddress(
        {qEnvironmentVariable("TESSAVO_SERVICE_URL"), file.value(QStringLiteral("service/url"))});
    settings.caFiles << qEnvironmentVariable("TESSAVO_CA_FILE").trimmed()
                     << besideFile(file.value(QStringLiteral("service/ca-file")), iniFile);
    settings.caFiles.removeAll(QString());
    settings.verifiesCertificates = verifies({qEnvironmentVariable("TESSAVO_TLS_VERIFY").trimmed(),
                                              file.value(QStringLiteral("service/tls-verify"))});
    if (!settings.verifiesCertificates)
        qCWarning(lcTessavo) << "TLS verification is off: any server certificate is accepted";
    return settings;
}

QString Installation::standardFile()
{
    const QString folder = platform::programFolder();
    return folder.isEmpty() ? QString() : folder + QStringLiteral("/tessavo-tools.ini");
}
