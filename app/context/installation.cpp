#include "app/context/installation.h"

#include "app/context/inifile.h"
#include "app/context/logging.h"
#include "platform/programfile.h"

#include <QFileInfo>
#include <QUrl>

#include <optional>

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

/// The first of what the environment and the file say that means anything: whether it is \a yes.
std::optional<bool> isSaid(const char *what, const QStringList &said, QLatin1String yes,
                           QLatin1String no)
{
    for (const QString &text : said) {
        if (text == yes || text == no)
            return text == yes;
        if (!text.isEmpty())
            qCWarning(lcTessavo) << what << "is neither" << yes << "nor" << no << ":" << text;
    }
    return std::nullopt;
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
    settings.verifiesCertificates = isSaid("TLS verification",
                                           {qEnvironmentVariable("TESSAVO_TLS_VERIFY").trimmed(),
                                            file.value(QStringLiteral("service/tls-verify"))},
                                           QLatin1String("yes"), QLatin1String("none"))
                                        .value_or(true);
    const std::optional<bool> readsBack =
        isSaid("the verification of imports",
               {qEnvironmentVariable("TESSAVO_IMPORT_VERIFY").trimmed(),
                file.value(QStringLiteral("import/verify"))},
               QLatin1String("read-back"), QLatin1String("size"));
    settings.readsImportsBack = readsBack.value_or(true);
    settings.decidesImports = readsBack.has_value();
    settings.keepsLedger = isSaid("the ledger",
                                  {qEnvironmentVariable("TESSAVO_LEDGER").trimmed(),
                                   file.value(QStringLiteral("ledger/enabled"))},
                                  QLatin1String("yes"), QLatin1String("no"))
                               .value_or(true);
    if (!settings.verifiesCertificates)
        qCWarning(lcTessavo) << "TLS verification is off: any server certificate is accepted";
    return settings;
}

QString Installation::standardFile()
{
    const QString folder = platform::programFolder();
    return folder.isEmpty() ? QString() : folder + QStringLiteral("/tessavo-tools.ini");
}
