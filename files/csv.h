#pragma once

#include <QByteArray>
#include <QStringList>

/// Tables for spreadsheet programs. Pure functions.
namespace csv {

/// What a file begins with, so that those programs know it for UTF-8.
QByteArray mark();
/// A row with its end. What such a program would take for a formula is marked as text.
QByteArray line(const QStringList &texts);

} // namespace csv
