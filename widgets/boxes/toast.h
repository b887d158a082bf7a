#pragma once

#include <QString>

#include <functional>

class QWidget;

/// One line low in a window that fades away by itself. It takes no focus, replaces
/// an earlier one of the same window, and goes with the widget it was shown for.
class Toast
{
public:
    Toast() = delete;

    static constexpr int toastMs = 2000;

    /// \a ms is how long the text stands before it fades. A text wider than the window is elided.
    static void show(QWidget *parent, const QString &text, int ms = toastMs);

    /// A line that stands longer and can be clicked: \a action is written behind the text, and
    /// \a act is what a click does, once.
    static void show(QWidget *parent, const QString &text, const QString &action,
                     std::function<void()> act);

    /// What stands in the window of \a parent; empty when there is nothing.
    static QString currentText(const QWidget *parent);
};
