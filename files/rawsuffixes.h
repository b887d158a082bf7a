#pragma once

#include <QStringList>

/// The suffixes of the cameras' raw files, in small letters and without a dot. Their order is that
/// in which they are looked for beside a photo.
inline QStringList rawSuffixes()
{
    return {QStringLiteral("cr2"), QStringLiteral("raw"), QStringLiteral("nef"),
            QStringLiteral("arw"), QStringLiteral("cr3"), QStringLiteral("raf")};
}
