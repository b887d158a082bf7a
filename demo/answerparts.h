#pragma once

#include "demo/form.h"

#include <QJsonObject>
#include <QString>

namespace demo {

// What answers are made of.

QString text(const char *value);
// Empty when the request has no such field.
QString field(const Fields &fields, const char *name);

// Answers that say no more than how it went.
QJsonObject success();
QJsonObject refusal(const QString &message);

} // namespace demo
