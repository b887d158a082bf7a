#pragma once

#include <QtGlobal>

#include <windows.h>

namespace platform {

constexpr qint64 fileTimeTicksUntil1970 = 116444736000000000; // of 100 ns, from 1601
constexpr qint64 nanosecondsPerFileTimeTick = 100;

/// Nanoseconds since 1970, UTC.
inline qint64 nanosecondsOf(const FILETIME &time)
{
    const auto ticks = qint64((quint64(time.dwHighDateTime) << 32) | time.dwLowDateTime);
    return (ticks - fileTimeTicksUntil1970) * nanosecondsPerFileTimeTick;
}

inline FILETIME fileTimeOf(qint64 nanoseconds)
{
    const auto ticks = quint64(nanoseconds / nanosecondsPerFileTimeTick + fileTimeTicksUntil1970);
    return {DWORD(ticks & 0xffffffff), DWORD(ticks >> 32)};
}

} // namespace platform
