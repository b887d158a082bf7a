#pragma once

#include <QObject>

class QWidget;

/// Minimises the program's frameless windows and repairs their translucency when they come back:
/// some window systems paint a restored translucent window on black. Interface thread only.
class MacWindowManager : public QObject
{
    Q_OBJECT

public:
    static MacWindowManager *instance();

    /// False only without a window. A maximised window comes back maximised.
    bool minimizeWindow(QWidget *window);

    /// minimizeWindow() and, should it fail, the framework's own way.
    void minimizeOrFallBack(QWidget *window);

    /// From now on windowRestored() tells whenever \a window leaves the minimised state, whoever
    /// minimised it (the task bar too). Call once per window; ends with the window.
    void watch(QWidget *window);

    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void onWindowRestored(QWidget *window);

signals:
    void windowRestored(QWidget *window);

private:
    MacWindowManager();
};
