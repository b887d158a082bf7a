#pragma once

#include <QString>
#include <QStringList>

/// The service address that the arguments of a tool's own process name; null when they name none.
QString urlHostIn(const QStringList &arguments);

/// Which window K::openStartWindow() opens.
enum class StartMode {
    Login = 0,        ///< the login, and the launcher after it
    Distribution = 1, ///< 设计分件, in a process of its own, with the login data that was saved
};
