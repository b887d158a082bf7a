#include "orderbrowser/rules/fieldfilter.h"

#include "orderbrowser/rules/fieldvalues.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>
#include <optional>

using orderfields::Kind;

namespace {

using Test = std::function<bool(const QString &value)>;

/// Both ends belong to it.
template <typename Value> struct Range
{
    Value first;
    Value last;

    bool contains(const Value &value) const { return first <= value && value <= last; }
};

using Numbers = Range<double>;
using Dates = Range<QDate>;

const QDate firstDay(1, 1, 1);
const QDate lastDay(9999, 12, 31);

/// Takes <, <=, > or >= off the front of \a text; empty when it begins with none.
QString takeComparison(QString *text)
{
    static const QRegularExpression form(QStringLiteral("^(<=|>=|<|>|=|≤|≥)\\s*"));
    const auto match = form.match(*text);
    *text = text->mid(match.capturedLength());
    QString sign = match.captured(1);
    return sign.replace(QChar(0x2264), QLatin1String("<="))
        .replace(QChar(0x2265), QLatin1String(">="));
}

std::optional<Numbers> numbersIn(QString typed)
{
    static const QRegularExpression between(
        QStringLiteral("^(-?[\\d.,]+)\\s*[-~～至]\\s*(-?[\\d.,]+)$"));
    const auto match = between.match(typed);
    if (match.hasMatch()) {
        const auto from = fieldvalues::number(match.captured(1));
        const auto to = fieldvalues::number(match.captured(2));
        if (from && to)
            return Numbers{qMin(*from, *to), qMax(*from, *to)};
        return {};
    }
    const QString sign = takeComparison(&typed);
    const auto bound = fieldvalues::number(typed);
    if (!bound)
        return {};
    constexpr double far = std::numeric_limits<double>::infinity();
    if (sign == QLatin1String(">"))
        return Numbers{std::nextafter(*bound, far), far};
    if (sign == QLatin1String(">="))
        return Numbers{*bound, far};
    if (sign == QLatin1String("<"))
        return Numbers{-far, std::nextafter(*bound, -far)};
    if (sign == QLatin1String("<="))
        return Numbers{-far, *bound};
    return Numbers{*bound, *bound};
}

/// A day, a month or a year.
std::optional<Dates> periodIn(const QString &typed)
{
    static const QRegularExpression month(QStringLiteral("^(\\d{4})[-/.年](\\d{1,2})月?$"));
    static const QRegularExpression year(QStringLiteral("^(\\d{4})年?$"));
    if (const auto day = fieldvalues::dateTime(typed))
        return Dates{day->date(), day->date()};
    if (const auto match = month.match(typed); match.hasMatch()) {
        const QDate first(match.captured(1).toInt(), match.captured(2).toInt(), 1);
        if (first.isValid())
            return Dates{first, first.addMonths(1).addDays(-1)};
    }
    if (const auto match = year.match(typed); match.hasMatch()) {
        const int number = match.captured(1).toInt();
        if (number > 0)
            return Dates{QDate(number, 1, 1), QDate(number, 12, 31)};
    }
    return {};
}

std::optional<Dates> namedPeriod(const QString &typed, const QDate &today)
{
    if (typed == QStringLiteral("今天"))
        return Dates{today, today};
    if (typed == QStringLiteral("昨天"))
        return Dates{today.addDays(-1), today.addDays(-1)};
    if (typed == QStringLiteral("明天"))
        return Dates{today.addDays(1), today.addDays(1)};
    if (typed == QStringLiteral("本月")) {
        const QDate first(today.year(), today.month(), 1);
        return Dates{first, first.addMonths(1).addDays(-1)};
    }
    static const QRegularExpression days(QStringLiteral("^(最近|未来)\\s*(\\d{1,5})\\s*天$"));
    const auto match = days.match(typed);
    if (!match.hasMatch() || match.captured(2).toInt() == 0)
        return {};
    const int others = match.captured(2).toInt() - 1; // today is one of them
    if (match.captured(1) == QStringLiteral("最近"))
        return Dates{today.addDays(-others), today};
    return Dates{today, today.addDays(others)};
}

std::optional<Dates> datesIn(QString typed, const QDate &today)
{
    if (const auto named = namedPeriod(typed, today))
        return named;
    static const QRegularExpression between(QStringLiteral("\\s*[~～至]\\s*"));
    const QStringList ends = typed.split(between);
    if (ends.size() == 2) {
        const auto from = periodIn(ends.first());
        const auto to = periodIn(ends.last());
        if (from && to)
            return Dates{qMin(from->first, to->first), qMax(from->last, to->last)};
        return {};
    }
    const QString sign = takeComparison(&typed);
    const auto period = periodIn(typed);
    if (!period || sign.isEmpty() || sign == QLatin1String("="))
        return period;
    if (sign == QLatin1String(">"))
        return Dates{period->last.addDays(1), lastDay};
    if (sign == QLatin1String(">="))
        return Dates{period->first, lastDay};
    if (sign == QLatin1String("<"))
        return Dates{firstDay, period->first.addDays(-1)};
    return Dates{firstDay, period->last};
}

Test textTest(Kind kind, const QString &typed, const QDate &today)
{
    if (kind == Kind::Phone) {
        // However either is grouped.
        static const QRegularExpression filling(QStringLiteral("[ -]"));
        return [typed = QString(typed).remove(filling)](const QString &value) {
            return QString(value).remove(filling).contains(typed, Qt::CaseInsensitive);
        };
    }
    return [kind, typed, display = fieldvalues::Display{true, today}](const QString &value) {
        return value.contains(typed, Qt::CaseInsensitive) ||
               fieldvalues::shown(kind, value, display).contains(typed, Qt::CaseInsensitive);
    };
}

bool isNothing(Kind kind, const QString &value)
{
    return value.trimmed().isEmpty() ||
           (kind == Kind::Mark && fieldvalues::shown(kind, value, {}).isEmpty());
}

Test testOf(Kind kind, const QString &typed, const QDate &today)
{
    if (typed == QStringLiteral("空"))
        return [kind](const QString &value) { return isNothing(kind, value); };
    if (typed == QStringLiteral("非空"))
        return [kind](const QString &value) { return !isNothing(kind, value); };
    if (kind == Kind::Number || kind == Kind::Money) {
        if (const auto range = numbersIn(typed)) {
            return [range = *range](const QString &value) {
                const auto number = fieldvalues::number(value);
                return number && range.contains(*number);
            };
        }
    }
    if (kind == Kind::Days) {
        if (const auto range = numbersIn(typed)) {
            return [range = *range, today](const QString &value) {
                const auto date = fieldvalues::dateTime(value);
                return date && range.contains(double(today.daysTo(date->date())));
            };
        }
    }
    if (kind == Kind::Date || kind == Kind::Days) {
        if (const auto range = datesIn(typed, today)) {
            return [range = *range](const QString &value) {
                const auto date = fieldvalues::dateTime(value);
                return date && range.contains(date->date());
            };
        }
    }
    return textTest(kind, typed, today);
}

} // namespace

FieldFilter::FieldFilter(Kind kind, const QString &typed, const QDate &today)
{
    const QString trimmed = typed.trimmed();
    if (!trimmed.isEmpty())
        test_ = testOf(kind, trimmed, today);
}

QString FieldFilter::help(Kind kind)
{
    const QString everywhere = QStringLiteral("空、非空");
    switch (kind) {
    case Kind::Number:
    case Kind::Money:
    case Kind::Days:
        return QStringLiteral("例如 3、>3、2-5；") + everywhere;
    case Kind::Date:
        return QStringLiteral("例如 2026-11、2026-11-05、>2026-11、最近7天、今天、本月；") +
               everywhere;
    default:
        return QStringLiteral("包含的文字；") + everywhere;
    }
}
