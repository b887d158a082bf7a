#pragma once

#include <QByteArray>
#include <QString>

/// The form-encoded body of a request, field by field in the order in which they are added.
///
/// In a value exactly "%", "&" and "+" are escaped and everything else goes as UTF-8 as it is: a
/// harmless value stays readable, and a customer called "A&B" cannot break a request.
class FormBody
{
public:
    FormBody &add(const QString &key, const QString &value);
    /// For a value so large that it had better be written as UTF-8 at once.
    FormBody &addUtf8(const QString &key, QByteArray value);
    /// A value that the service takes unescaped (login and account verification).
    FormBody &addRaw(const QString &key, const QString &value);

    const QByteArray &bytes() const { return bytes_; }

private:
    FormBody &append(const QString &key, const QByteArray &value);

    QByteArray bytes_;
};
