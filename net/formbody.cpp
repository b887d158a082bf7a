#include "net/formbody.h"

FormBody &FormBody::add(const QString &key, const QString &value)
{
    QString escaped = value;
    escaped.replace(QLatin1Char('%'), QLatin1String("%25"));
    escaped.replace(QLatin1Char('&'), QLatin1String("%26"));
    escaped.replace(QLatin1Char('+'), QLatin1String("%2B"));
    return addRaw(key, escaped);
}

FormBody &FormBody::addRaw(const QString &key, const QString &value)
{
    if (!bytes_.isEmpty())
        bytes_ += '&';
    bytes_ += key.toUtf8();
    bytes_ += '=';
    bytes_ += value.toUtf8();
    return *this;
}
