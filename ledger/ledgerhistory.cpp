#include "ledger/ledgerhistory.h"

#include "ledger/ledgerrows.h"

#include <QDateTime>
#include <QStringList>

namespace ledgerhistory {

namespace {

/// \a text for LIKE … ESCAPE '!', which takes two characters for more than themselves.
QString literally(QString text)
{
    for (const QChar character : {QLatin1Char('!'), QLatin1Char('%'), QLatin1Char('_')})
        text.replace(character, QLatin1Char('!') + QString(character));
    return text;
}

QString partOf(const QString &text)
{
    return QLatin1Char('%') + literally(text) + QLatin1Char('%');
}

/// A file of the entry, copied or deleted, that \a condition on its name takes.
QString fileWith(const QString &condition)
{
    return QStringLiteral("(EXISTS (SELECT 1 FROM copy f WHERE f.entry = e.id AND %1)"
                          " OR EXISTS (SELECT 1 FROM deletion f WHERE f.entry = e.id AND %1))")
        .arg(condition);
}

class Conditions
{
public:
    void add(const QString &condition, const QVariantList &values)
    {
        texts_.append(condition);
        values_.append(values);
    }

    QString text() const
    {
        return texts_.isEmpty() ? QString()
                                : QStringLiteral("WHERE ") + texts_.join(QStringLiteral(" AND "));
    }
    const QVariantList &values() const { return values_; }

private:
    QStringList texts_;
    QVariantList values_;
};

void addDates(Conditions &conditions, const ledger::HistorySearch &search)
{
    if (search.from.isValid()) {
        conditions.add(QStringLiteral("e.begun >= ?"),
                       {search.from.startOfDay().toMSecsSinceEpoch()});
    }
    if (search.to.isValid()) {
        conditions.add(QStringLiteral("e.begun < ?"),
                       {search.to.addDays(1).startOfDay().toMSecsSinceEpoch()});
    }
}

} // namespace

Selection selectionFor(const ledger::HistorySearch &search)
{
    Conditions conditions;
    if (search.before != 0)
        conditions.add(QStringLiteral("e.id < ?"), {search.before});
    addDates(conditions, search);
    if (!search.works.isEmpty()) {
        QStringList numbers;
        for (const ledger::Work work : search.works)
            numbers.append(QString::number(int(work)));
        conditions.add(QStringLiteral("r.work IN (%1)").arg(numbers.join(QLatin1Char(','))), {});
    }
    if (!search.order.isEmpty()) {
        conditions.add(QStringLiteral("(o.number LIKE ? ESCAPE '!' OR o.name LIKE ? ESCAPE '!')"),
                       {literally(search.order) + QLatin1Char('%'), partOf(search.order)});
    }
    if (!search.card.isEmpty()) {
        conditions.add(
            QStringLiteral("e.id IN (SELECT entry FROM entry_volume WHERE volume IN (SELECT id"
                           " FROM volume WHERE label LIKE ? ESCAPE '!' OR serial = ?"
                           " COLLATE NOCASE))"),
            {partOf(search.card), search.card});
    }
    if (!search.fileStart.isEmpty()) {
        const QString end = search.fileStart + QChar(0xdbff) + QChar(0xdfff);
        conditions.add(fileWith(QStringLiteral("f.name COLLATE NOCASE >= ?"
                                               " AND f.name COLLATE NOCASE < ?")),
                       {search.fileStart, end, search.fileStart, end});
    }
    if (!search.filePart.isEmpty()) {
        conditions.add(fileWith(QStringLiteral("f.name LIKE ? ESCAPE '!'")),
                       {partOf(search.filePart), partOf(search.filePart)});
    }
    return {ledgerrows::entrySelection() + conditions.text() +
                QStringLiteral(" ORDER BY e.id DESC LIMIT ?"),
            conditions.values() + QVariantList{search.most + 1}};
}

} // namespace ledgerhistory
