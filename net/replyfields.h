#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <initializer_list>
#include <utility>

/// Reading the members of a reply. The service is loose with types: a number may come as text or as
/// a number, and what is missing, null or of another type all mean "nothing there".
namespace reply {

/// The member as text; numbers are written without an exponent. Empty when there is none.
QString text(const QJsonObject &object, const QString &key);

/// The member as a whole number; \a otherwise when it is none.
int number(const QJsonObject &object, const QString &key, int otherwise = 0);

/// The objects in an array member; elements that are no objects are left out.
QVector<QJsonObject> objects(const QJsonObject &object, const QString &key);

/// The texts of the member \a field of each object in the array member \a key; empty ones left out.
QStringList texts(const QJsonObject &object, const QString &key, const QString &field);

/// Reads the named members as text into the record's fields.
template <typename Record>
void readTexts(const QJsonObject &object, Record *record,
               std::initializer_list<std::pair<const char *, QString Record::*>> members)
{
    for (const auto &[key, field] : members)
        record->*field = text(object, QString::fromLatin1(key));
}

/// Whether \a object says that the request succeeded: its "code" is the text "1", strictly.
bool isSuccess(const QJsonObject &object);

} // namespace reply
