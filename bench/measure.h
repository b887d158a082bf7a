#pragma once

#include "tests/support/text.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <cstdio>

/// What the benches do with their figures. They print and judge, and leave it at that: a missed
/// bound is a finding, not a failure.
namespace bench {

/// The middle value; of an even number of them the mean of the middle two. Not for none.
inline double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    const int middle = values.size() / 2;
    return values.size() % 2 == 1 ? values.at(middle)
                                  : (values.at(middle - 1) + values.at(middle)) / 2;
}

inline double largest(const QVector<double> &values)
{
    return *std::max_element(values.cbegin(), values.cend());
}

/// One line at once, so that a long bench can be watched.
inline void line(const QString &text)
{
    std::printf("%s\n", qUtf8Printable(text));
    std::fflush(stdout);
}

inline QString number(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

inline QString listed(const QVector<double> &values, int decimals)
{
    QStringList texts;
    for (const double value : values)
        texts.append(number(value, decimals));
    return texts.join(QLatin1Char(' '));
}

/// "WHAT: VALUE UNIT (bound BOUND) within"; the bound itself is still within. \a unit may be empty.
inline void judge(const QString &what, double value, double bound, const QString &unit,
                  int decimals)
{
    const QString after = unit.isEmpty() ? QString() : QLatin1Char(' ') + unit;
    line("%1: %2%3 (bound %4%3) %5"_s.arg(what, number(value, decimals), after,
                                          number(bound, decimals),
                                          value <= bound ? "within"_s : "MISSED"_s));
}

} // namespace bench
