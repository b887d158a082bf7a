#pragma once

#include <QString>
#include <QStringList>

/// The service address that the arguments of a tool's own process name; null when they name none.
QString urlHostIn(const QStringList &arguments);
