#pragma once

#include <QMap>
#include <QString>

/// A day as the service writes it and folders are named after it; always two or more digits.
struct ShootDate
{
    QString year = QStringLiteral("1970");
    QString month = QStringLiteral("01");
    QString day = QStringLiteral("01");
};

/// Reads "2024-3-7"; anything that does not have exactly three parts is the first day of 1970.
ShootDate parseShootDate(const QString &text);

/// 2024, 5, 7 as "2024-05-07".
QString formatDate(int year, int month, int day);

/// \a path as the service expects it from a Windows client: a share mounted below /Volumes becomes
/// a path on \a shareHost, and separators become back slashes.
QString convertPathForService(const QString &path, const QString &shareHost);

/// The host whose share \a orderPath lies on: that of its own UNC path, otherwise that of the
/// service.
QString shareHostOf(const QString &orderPath, const QString &serviceUrl);

/// An order's import folder in Windows form: the value of "importPath" when there is one, otherwise
/// composed from "importPublicPath", "shotdate_year", "shotdate_month", "shotdate_day",
/// "orderNumber", "photoNum", "mname" and "wname". Everything but the root, which the studio itself
/// configured, is one path component each.
QString composeImportPath(const QMap<QString, QString> &order);

/// Paths in Windows form that name one place on a share compare equal by this, whatever their case.
QString wirePathKey(const QString &wirePath);

/// The Windows form of \a name inside \a folder, both in Windows form.
QString joinWirePath(const QString &folder, const QString &name);

/// The same for paths as this machine writes them, with slashes.
QString joinLocalPath(const QString &folder, const QString &name);
