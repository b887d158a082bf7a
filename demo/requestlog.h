#pragma once

#include "demo/form.h"

#include <QByteArray>
#include <QJsonArray>
#include <QString>
#include <QVector>

namespace demo {

struct RecordedRequest
{
    QString action; // the "a" of the query
    QByteArray query;
    QByteArray body;
    Fields fields;
    QString contentType;
    QString misbehaviour; // kind that this request met, empty for none
    QByteArray userAgent; // of pictures only
};

// What clients sent, in the order of arrival. Not thread-safe.
class RequestLog
{
public:
    void add(const RecordedRequest &request) { requests_.append(request); }
    void clear() { requests_.clear(); }
    // An empty action gives all. Members: action, query, body (text), body64, fields, contentType,
    // misbehaviour, userAgent. A picture has the action "image" and its path as the query.
    QJsonArray toJson(const QString &action) const;

private:
    QVector<RecordedRequest> requests_;
};

} // namespace demo
