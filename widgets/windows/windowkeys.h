#pragma once

#include <QString>
#include <QVector>

class QAction;
class QWidget;

/// What a key does in a window.
struct WindowKey
{
    QString keys; ///< as the system writes them, several with " / " between
    QString what;
    QString where; ///< the part of the window that must have the focus; empty: anywhere in it
};

/// The keys of \a window, read from its actions, buttons and shortcuts as they are now, so that no
/// list of them has to be kept. Left out is what cannot be reached because it is hidden.
QVector<WindowKey> keysOf(const QWidget *window);

/// Gives \a window the action 快捷键 (Ctrl+/), which shows its keys in a dialog. The window owns
/// it.
QAction *addKeyList(QWidget *window);
