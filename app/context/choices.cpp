#include "app/context/choices.h"

#include "app/context/accountcontext.h"

#include <QSettings>
#include <QStandardPaths>

namespace choices {

namespace {

QString path()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
           QStringLiteral("/choices.ini");
}

QString ofAccount(const QString &key)
{
    return AccountContext::uid + QLatin1Char('/') + key;
}

} // namespace

QString remembered(const QString &key)
{
    return QSettings(path(), QSettings::IniFormat).value(ofAccount(key)).toString();
}

void remember(const QString &key, const QString &value)
{
    QSettings file(path(), QSettings::IniFormat);
    file.setValue(ofAccount(key), value);
}

} // namespace choices
