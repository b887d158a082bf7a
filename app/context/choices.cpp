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

/// Beside the accounts, none of which has such a name.
QString ofMachine(const QString &key)
{
    return QStringLiteral("this-machine/") + key;
}

QString valueOf(const QString &key)
{
    return QSettings(path(), QSettings::IniFormat).value(key).toString();
}

void setValue(const QString &key, const QString &value)
{
    QSettings file(path(), QSettings::IniFormat);
    file.setValue(key, value);
}

} // namespace

QString remembered(const QString &key)
{
    return valueOf(ofAccount(key));
}

void remember(const QString &key, const QString &value)
{
    setValue(ofAccount(key), value);
}

QString rememberedOnMachine(const QString &key)
{
    return valueOf(ofMachine(key));
}

void rememberOnMachine(const QString &key, const QString &value)
{
    setValue(ofMachine(key), value);
}

} // namespace choices
