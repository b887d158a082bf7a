#include "files/csv.h"

namespace csv {

namespace {

QString field(QString text)
{
    static const QString formula = QStringLiteral("=+-@\t\r");
    if (!text.isEmpty() && formula.contains(text.at(0)))
        text.prepend(QLatin1Char('\''));
    text.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

} // namespace

QByteArray mark()
{
    return QByteArrayLiteral("\xEF\xBB\xBF");
}

QByteArray line(const QStringList &texts)
{
    QStringList fields;
    fields.reserve(texts.size());
    for (const QString &text : texts)
        fields.append(field(text));
    return fields.join(QLatin1Char(',')).toUtf8() + "\r\n";
}

} // namespace csv
