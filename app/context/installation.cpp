#include "app/context/installation.h"

#include "app/context/logging.h"

const Installation &Installation::current()
{
    static const Installation settings = read();
    return settings;
}

Installation Installation::read()
{
    Installation settings;
    settings.serviceUrl = qEnvironmentVariable("TESSAVO_SERVICE_URL").trimmed();
    if (settings.serviceUrl.isEmpty())
        settings.serviceUrl = QStringLiteral(TESSAVO_DEFAULT_SERVICE_URL);
    while (settings.serviceUrl.endsWith(QLatin1Char('/')))
        settings.serviceUrl.chop(1);
    settings.caFile = qEnvironmentVariable("TESSAVO_CA_FILE").trimmed();
    settings.verifiesCertificates =
        qEnvironmentVariable("TESSAVO_TLS_VERIFY") != QLatin1String("none");
    if (!settings.verifiesCertificates)
        qCWarning(lcTessavo) << "TESSAVO_TLS_VERIFY=none: server certificates are not verified";
    return settings;
}
