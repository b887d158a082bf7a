// Rows for spreadsheet programs: read as these do, they hold what was written and no formula.
#include "files/csv.h"
#include "fuzz/harness.h"

using fuzzing::require;

namespace {

/// The fields of one row, all in quotes; fails on anything else.
QStringList fieldsOf(const QString &row)
{
    const QLatin1Char quote('"');
    QStringList fields;
    int at = 0;
    do {
        require(row.mid(at, 1) == quote, "a field is in quotes", row);
        QString field;
        for (++at; at < row.size(); ++at) {
            if (row.at(at) != quote)
                field += row.at(at);
            else if (row.mid(at + 1, 1) == quote)
                field += row.at(at++);
            else
                break;
        }
        require(row.mid(at, 1) == quote, "a field ends", row);
        fields.append(field);
        ++at;
    } while (row.mid(at++, 1) == QLatin1String(","));
    require(row.mid(at - 1) == QLatin1String("\r\n"), "a row ends", row);
    return fields;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QStringList texts = fuzzing::textOf(data, size).split(QLatin1Char('|'));
    const QByteArray row = csv::line(texts);
    const QStringList fields = fieldsOf(QString::fromUtf8(row.constData(), row.size()));
    require(fields.size() == texts.size(), "each text is one field");
    for (int index = 0; index < texts.size(); ++index) {
        const QString &field = fields.at(index);
        require(field == texts.at(index) || field == QLatin1Char('\'') + texts.at(index),
                "a text is read as it was written", texts.at(index));
        require(field.isEmpty() || !QStringLiteral("=+-@\t\r").contains(field.at(0)),
                "no field is a formula", field);
    }
    return 0;
}
