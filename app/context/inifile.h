#pragma once

#include <QMap>
#include <QString>

/// The settings of an .ini file as "section/key" (small letters) to value. Plain text in UTF-8, or
/// UTF-16 with a mark, in which back slashes and commas mean nothing, as those who write Windows
/// paths by hand expect. Empty when there is no such file; lines that are no setting, and a file
/// that cannot be read, are logged.
QMap<QString, QString> readIniFile(const QString &path);
