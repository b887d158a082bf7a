#pragma once

#include <QString>

/// A test is full of texts: "订单"_s instead of a macro around each.
inline QString operator""_s(const char *text, size_t size)
{
    return QString::fromUtf8(text, int(size));
}
