#include "orderbrowser/rules/orderstate.h"

#include "look/colours.h"

#include <QStringList>

namespace orderstate {

namespace {

// How far, from nothing to all.
const QString nothing = QStringLiteral("未导片");
const QString imported = QStringLiteral("已导");
const QString selected = QStringLiteral("已选");
const QString retouching = QStringLiteral("精修");

int stageOf(const QString &text)
{
    if (text.startsWith(retouching))
        return 3;
    if (text.startsWith(selected))
        return 2;
    return text.startsWith(imported) ? 1 : 0;
}

/// The counts behind the word.
QStringList countsIn(const QString &text)
{
    return text.section(QLatin1Char(' '), 1).split(QLatin1Char('/'));
}

} // namespace

QString text(const Counts &counts)
{
    const QString one = QStringLiteral("%1 %2");
    if (counts.retouched > 0 && counts.chosen > 0)
        return QStringLiteral("%1 %2/%3").arg(retouching).arg(counts.retouched).arg(counts.chosen);
    if (counts.retouched > 0)
        return one.arg(retouching).arg(counts.retouched);
    if (counts.isSelected)
        return one.arg(selected).arg(counts.chosen);
    if (counts.originals > 0)
        return one.arg(imported).arg(counts.originals);
    return nothing;
}

QRgb colour(const QString &text)
{
    const QStringList counts = countsIn(text);
    switch (stageOf(text)) {
    case 1:
        return colours::heading;
    case 2:
        return colours::chosen;
    case 3:
        return counts.value(0).toInt() >= counts.value(1).toInt() ? colours::success
                                                                  : colours::deletionUnreported;
    default:
        return colours::muted;
    }
}

double sortValue(const QString &text)
{
    constexpr double mostPhotos = 1e9;
    return stageOf(text) * mostPhotos + countsIn(text).value(0).toDouble();
}

} // namespace orderstate
