#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace platform {

/// A program of the system and what it is called with.
struct Command
{
    QString program;
    QStringList arguments;
};

/// Shows the folder \a path in the system's file manager.
Command folderCommand(const QString &path);

/// Whether a folder stands at \a path. A shortcut to one is a file. May wait for a share.
bool isFolder(const QString &path);

/// Asks \a host for one sign of life within \a timeoutMs; exit code 0 means that it answered.
Command pingCommand(const QString &host, int timeoutMs);

/// What such a program wrote, as text.
QString textOf(const QByteArray &output);

} // namespace platform
