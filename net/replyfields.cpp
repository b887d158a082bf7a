#include "net/replyfields.h"

#include <QJsonArray>
#include <QJsonValue>

#include <cmath>

namespace reply {

QString text(const QJsonObject &object, const QString &key)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble())
        return value.toString();
    const double number = value.toDouble();
    constexpr double exactWholeNumbers = 9007199254740992.0; // 2^53
    if (number == std::floor(number) && std::abs(number) < exactWholeNumbers)
        return QString::number(qint64(number));
    return QString::number(number, 'g', 15);
}

int number(const QJsonObject &object, const QString &key, int otherwise)
{
    bool ok = false;
    const int value = text(object, key).trimmed().toInt(&ok);
    return ok ? value : otherwise;
}

QVector<QJsonObject> objects(const QJsonObject &object, const QString &key)
{
    const QJsonArray array = object.value(key).toArray();
    QVector<QJsonObject> found;
    found.reserve(array.size());
    for (const QJsonValue &element : array) {
        if (element.isObject())
            found.append(element.toObject());
    }
    return found;
}

QStringList texts(const QJsonObject &object, const QString &key, const QString &field)
{
    QStringList found;
    const auto elements = objects(object, key);
    for (const QJsonObject &element : elements) {
        const QString value = text(element, field);
        if (!value.isEmpty())
            found.append(value);
    }
    return found;
}

bool isSuccess(const QJsonObject &object)
{
    return object.value(QLatin1String("code")).toString() == QLatin1String("1");
}

} // namespace reply
