#pragma once

#include "orderbrowser/rules/orderfields.h"

#include <QCollator>
#include <QDate>
#include <QDateTime>
#include <QRgb>
#include <QString>

#include <optional>

/// Reading, showing and sorting the values of an order's fields. What cannot be read as its kind is
/// shown as it came and sorted behind what can. Pure functions.
namespace fieldvalues {

using orderfields::Kind;

/// Amounts with or without separators: "12,800.00".
std::optional<double> number(const QString &text);
/// In any of the spellings that occur: 2026-3-7, 2026/03/07, 2026年3月7日, with or without a time.
std::optional<QDateTime> dateTime(const QString &text);

/// What the window says about how to show values.
struct Display
{
    bool wholePhones = false; ///< otherwise the middle is masked
    QDate today;
};

/// For a cell, a copy or an export: one line, without marks that turn the direction of text.
QString shown(Kind kind, const QString &value, const Display &display);
/// The middle of every number that is long enough for a telephone's is masked.
QString masked(const QString &phones);
/// Transparent: as other text.
QRgb colour(Kind kind, const QString &value, const QDate &today);

/// What a value is sorted by.
struct SortKey
{
    enum Rank { Readable, Unreadable, Empty };

    Rank rank = Empty;
    double number = 0;
    QString text;
    std::optional<QCollatorSortKey> name;
};

/// \a names sorts what is sorted as names are; see nameOrder().
SortKey sortKey(Kind kind, const QString &value, const QCollator &names);
QCollator nameOrder();
/// Below, at or above zero. Whatever the direction, the unreadable and then the empty are last.
int compare(const SortKey &one, const SortKey &other, Qt::SortOrder order);

} // namespace fieldvalues
