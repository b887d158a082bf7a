#include "demo/requestlog.h"

#include <QJsonObject>

namespace demo {

QJsonArray RequestLog::toJson(const QString &action) const
{
    QJsonArray array;
    for (const RecordedRequest &request : requests_) {
        if (!action.isEmpty() && request.action != action)
            continue;
        QJsonObject fields;
        for (auto field = request.fields.begin(); field != request.fields.end(); ++field)
            fields[field.key()] = field.value();
        array.append(
            QJsonObject{{QStringLiteral("action"), request.action},
                        {QStringLiteral("query"), QString::fromUtf8(request.query)},
                        {QStringLiteral("body"), QString::fromUtf8(request.body)},
                        {QStringLiteral("body64"), QString::fromLatin1(request.body.toBase64())},
                        {QStringLiteral("fields"), fields},
                        {QStringLiteral("contentType"), request.contentType},
                        {QStringLiteral("misbehaviour"), request.misbehaviour},
                        {QStringLiteral("userAgent"), QString::fromLatin1(request.userAgent)}});
    }
    return array;
}

} // namespace demo
