#include "orderbrowser/rules/ordersheet.h"

#include "files/csv.h"

QVector<int> OrderSheet::fields() const
{
    QVector<int> found;
    for (const QString &key : keys) {
        const int field = orderfields::positionOf(listing.fields, key);
        if (field >= 0)
            found.append(field);
    }
    return found;
}

QByteArray OrderSheet::head() const
{
    QStringList headings;
    const auto shown = fields();
    for (const int field : shown)
        headings.append(listing.fields.at(field).heading);
    return csv::mark() + csv::line(headings);
}

QByteArray OrderSheet::lines(int first, int count) const
{
    const QVector<int> shown = fields();
    QByteArray table;
    const int end = qMin(rows.size(), first + count);
    for (int row = first; row < end; ++row) {
        QStringList texts;
        for (const int field : shown) {
            texts.append(fieldvalues::shown(listing.fields.at(field).kind,
                                            listing.value(rows.at(row), field), display));
        }
        table += csv::line(texts);
    }
    return table;
}
