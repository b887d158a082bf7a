#pragma once

#include <QDir>
#include <QString>

#include <string>

namespace platform {

/// \a path in the form that the Win32 file calls take beyond 260 characters.
inline std::wstring longPath(const QString &path)
{
    const QString native = QDir::toNativeSeparators(QDir::cleanPath(path));
    if (native.startsWith(QLatin1String("\\\\?\\")) || QDir::isRelativePath(path))
        return native.toStdWString();
    if (native.startsWith(QLatin1String("\\\\")))
        return (QStringLiteral("\\\\?\\UNC\\") + native.mid(2)).toStdWString();
    return (QStringLiteral("\\\\?\\") + native).toStdWString();
}

} // namespace platform
