#include "net/formbody.h"

FormBody &FormBody::add(const QString &key, const QString &value)
{
    return addUtf8(key, value.toUtf8());
}

FormBody &FormBody::addUtf8(const QString &key, QByteArray value)
{
    value.replace('%', "%25");
    value.replace('&', "%26");
    value.replace('+', "%2B");
    return append(key, value);
}

FormBody &FormBody::addRaw(const QString &key, const QString &value)
{
    return append(key, value.toUtf8());
}

FormBody &FormBody::append(const QString &key, const QByteArray &value)
{
    if (!bytes_.isEmpty())
        bytes_ += '&';
    bytes_ += key.toUtf8();
    bytes_ += '=';
    bytes_ += value;
    return *this;
}
