#pragma once

#include <QByteArray>
#include <QString>

/// Whether the folder of an order that is being emptied still is there. Paths are in Windows form.
/// Touches the disk and can block; for worker threads.
namespace emptiedfolder {

/// What tells the folder that holds that of an order from every other; empty for unknown.
QByteArray holderOf(const QString &netPath);

enum class State {
    There,
    Removed,     ///< and nothing else has happened: its files are gone with it
    Unreachable, ///< and so may be the disk under it, which then still has every file
};

struct Look
{
    State state = State::There;
    QString reason; ///< why it is unreachable
};

/// \a holder: what holderOf() said when the files were listed.
Look lookFor(const QString &netPath, const QByteArray &holder);

/// Of a share or another machine's disk that is gone.
QString unreachableText();

} // namespace emptiedfolder
