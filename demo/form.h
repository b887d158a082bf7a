#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

namespace demo {

// The fields of a form or of a query. A name that comes twice keeps its last value.
using Fields = QMap<QString, QString>;

// Decodes as the form parser of a web service does: "+" is a blank, %XX is a byte, a "%" without
// two hexadecimal digits stays, the bytes are UTF-8. Pure; nothing counts as malformed.
Fields decodeForm(const QByteArray &body);

} // namespace demo
