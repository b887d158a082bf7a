#pragma once

#include "orderbrowser/rules/orderfields.h"

#include <QDate>
#include <QString>

#include <functional>

/// What the user types under a heading, as a test of that field's values.
///
/// Everywhere: "空" and "非空". Numbers: 3, >3, >=3, <3, <=3, 2-5. Dates: 2026, 2026-11,
/// 2026-11-05, two of them with "~" between, <, <=, > and >= before one, 今天, 昨天, 明天, 本月,
/// 最近7天, 未来7天. Everything else is looked for in the text.
class FieldFilter
{
public:
    /// Lets everything pass.
    FieldFilter() = default;
    FieldFilter(orderfields::Kind kind, const QString &typed, const QDate &today);

    bool isEmpty() const { return !test_; }
    /// \a value as it came.
    bool matches(const QString &value) const { return !test_ || test_(value); }

    /// What can be typed for a kind, for a tool tip.
    static QString help(orderfields::Kind kind);

private:
    std::function<bool(const QString &value)> test_;
};
