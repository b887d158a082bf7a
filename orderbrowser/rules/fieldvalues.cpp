#include "orderbrowser/rules/fieldvalues.h"

#include "look/colours.h"
#include "orderbrowser/rules/orderstate.h"

#include <QLocale>
#include <QRegularExpression>

namespace fieldvalues {

namespace {

/// One that orders texts as readers count: runs of digits by their value.
QString naturalKey(const QString &text)
{
    QString key;
    for (int i = 0; i < text.size();) {
        if (!text.at(i).isDigit()) {
            key += text.at(i++).toCaseFolded();
            continue;
        }
        int end = i;
        while (end < text.size() && text.at(end).isDigit())
            ++end;
        while (i + 1 < end && text.at(i).digitValue() == 0)
            ++i;
        // Longer numbers are larger; the length goes first.
        key += QLatin1Char('0') + QChar(ushort(qMin(end - i, 0x7fff))) + text.mid(i, end - i);
        i = end;
    }
    return key;
}

bool turnsDirection(QChar sign)
{
    const ushort code = sign.unicode();
    return code == 0x061c || code == 0x200e || code == 0x200f ||
           (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

QString onOneLine(const QString &text)
{
    QString line;
    line.reserve(text.size());
    for (const QChar sign : text) {
        if (turnsDirection(sign))
            continue;
        line += sign < QLatin1Char(' ') || sign.unicode() == 0x7f || sign == QChar::LineSeparator ||
                        sign == QChar::ParagraphSeparator
                    ? QLatin1Char(' ')
                    : sign;
    }
    return line;
}

QString shownDate(const QString &value)
{
    const auto read = dateTime(value);
    if (!read)
        return value;
    const bool hasTime = read->time() != QTime(0, 0);
    return read->toString(hasTime ? QStringLiteral("yyyy-MM-dd HH:mm")
                                  : QStringLiteral("yyyy-MM-dd"));
}

QString shownDays(const QString &value, const QDate &today)
{
    const auto read = dateTime(value);
    if (!read)
        return value;
    const qint64 days = today.daysTo(read->date());
    return days == 0 ? QStringLiteral("今天") : QStringLiteral("%1 天").arg(days);
}

QString shownMark(const QString &value)
{
    if (value == QLatin1String("1") || value == QLatin1String("true"))
        return QStringLiteral("是");
    return value == QLatin1String("0") || value == QLatin1String("false") ? QString() : value;
}

SortKey readable(const std::optional<double> &number, const QString &value)
{
    if (!number)
        return {SortKey::Unreadable, 0, value, {}};
    return {SortKey::Readable, *number, {}, {}};
}

} // namespace

std::optional<double> number(const QString &text)
{
    static const QRegularExpression form(QStringLiteral(
        "^\\s*[¥￥]?\\s*(-?(?:\\d+|\\d{1,3}(?:[,，]\\d{3})+)(?:\\.\\d+)?)\\s*元?\\s*$"));
    const auto match = form.match(text);
    if (!match.hasMatch())
        return {};
    return match.captured(1).remove(QLatin1Char(',')).remove(QChar(0xff0c)).toDouble();
}

std::optional<QDateTime> dateTime(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^\\s*(\\d{4})(?:[-/.年](\\d{1,2})[-/.月](\\d{1,2})日?|(\\d{2})(\\d{2}))"
                       "(?:[ T]\\s*(\\d{1,2}):(\\d{2})(?::(\\d{2})(?:\\.\\d+)?)?)?\\s*$"));
    const auto match = form.match(text);
    if (!match.hasMatch())
        return {};
    const auto part = [&match](int first, int second) {
        const QString one = match.captured(first);
        return (one.isEmpty() ? match.captured(second) : one).toInt();
    };
    const QDate date(match.captured(1).toInt(), part(2, 4), part(3, 5));
    const QTime time(match.captured(6).toInt(), match.captured(7).toInt(),
                     match.captured(8).toInt());
    if (!date.isValid() || !time.isValid())
        return {};
    return QDateTime(date, time, Qt::UTC); // a calendar's reading, not a moment: no zone moves it
}

QString masked(const QString &phones)
{
    static const QRegularExpression digits(QStringLiteral("\\d(?:[ -]?\\d){4,}"));
    QString text;
    int done = 0;
    for (auto all = digits.globalMatch(phones); all.hasNext();) {
        const auto run = all.next();
        const QString found = run.captured();
        const bool isLong = found.size() >= 9;
        text += phones.mid(done, run.capturedStart() - done) + found.left(isLong ? 3 : 0) +
                QStringLiteral("****") + found.right(isLong ? 4 : 2);
        done = run.capturedEnd();
    }
    return text + phones.mid(done);
}

QString shown(Kind kind, const QString &value, const Display &display)
{
    if (value.isEmpty())
        return value;
    switch (kind) {
    case Kind::Date:
        return onOneLine(shownDate(value));
    case Kind::Days:
        return onOneLine(shownDays(value, display.today));
    case Kind::Mark:
        return onOneLine(shownMark(value));
    case Kind::Phone:
        return onOneLine(display.wholePhones ? value : masked(value));
    default:
        return onOneLine(value);
    }
}

QRgb colour(Kind kind, const QString &value, const QDate &today)
{
    if (kind == Kind::State)
        return orderstate::colour(value);
    if (kind == Kind::Mark)
        return colours::failure;
    if (kind == Kind::Days) {
        const auto date = dateTime(value);
        return date && date->date() < today ? colours::failure : 0;
    }
    return 0;
}

QCollator nameOrder()
{
    QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

SortKey sortKey(Kind kind, const QString &value, const QCollator &names)
{
    if (value.trimmed().isEmpty())
        return {};
    switch (kind) {
    case Kind::Number:
    case Kind::Money:
        return readable(number(value), value);
    case Kind::Date:
    case Kind::Days: {
        const auto read = dateTime(value);
        return readable(read ? std::make_optional(double(read->toSecsSinceEpoch())) : std::nullopt,
                        value);
    }
    case Kind::State:
        return readable(orderstate::sortValue(value), value);
    case Kind::Mark:
        if (shownMark(value).isEmpty())
            return {};
        return {SortKey::Readable, 0, value, {}};
    case Kind::Name:
        return {SortKey::Readable, 0, {}, names.sortKey(value)};
    default:
        return {SortKey::Readable, 0, naturalKey(value), {}};
    }
}

int compare(const SortKey &one, const SortKey &other, Qt::SortOrder order)
{
    if (one.rank != other.rank)
        return one.rank < other.rank ? -1 : 1;
    int difference = one.number < other.number ? -1 : one.number > other.number ? 1 : 0;
    if (difference == 0 && one.name && other.name)
        difference = one.name->compare(*other.name);
    if (difference == 0)
        difference = one.text.compare(other.text);
    return order == Qt::AscendingOrder ? difference : -difference;
}

} // namespace fieldvalues
