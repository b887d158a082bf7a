#pragma once

#include <QDir>
#include <QFileInfo>
#include <QString>

#include <string>

namespace platform {

/// \a path in the form that the Win32 file calls take beyond 260 characters. That form is taken to
/// the letter, so a path that leaves its drive or folder open is completed first.
inline std::wstring longPath(const QString &path)
{
    const QString extended = QStringLiteral("\\\\?\\");
    const QString share = QStringLiteral("\\\\");
    QString native = QDir::toNativeSeparators(QDir::cleanPath(path));
    if (native.startsWith(extended))
        return native.toStdWString();
    if (native.startsWith(share))
        return (extended + QStringLiteral("UNC\\") + native.mid(share.size())).toStdWString();
    const bool hasDriveAndRoot =
        native.size() > 2 && native.at(1) == QLatin1Char(':') && native.at(2) == QLatin1Char('\\');
    if (!hasDriveAndRoot)
        native = QDir::toNativeSeparators(
            QFileInfo(QDir::fromNativeSeparators(native)).absoluteFilePath());
    return (extended + native).toStdWString();
}

} // namespace platform
