#pragma once

#include <QString>

class QWidget;

/// One line low in a window that fades away by itself. It takes neither focus nor mouse, replaces
/// an earlier one of the same window, and goes with the widget it was shown for.
class Toast
{
public:
    Toast() = delete;

    static constexpr int toastMs = 2000;

    /// \a ms is how long the text stands before it fades. A text wider than the window is elided.
    static void show(QWidget *parent, const QString &text, int ms = toastMs);

    /// What stands in the window of \a parent; empty when there is nothing.
    static QString currentText(const QWidget *parent);
};
