#include "widgets/frame/macwindowmanager.h"

#include <QDebug>
#include <QTimer>
#include <QWidget>
#include <QWindowStateChangeEvent>

namespace {

constexpr int restoreDelayMs = 100;

void repaintNow(QWidget *widget)
{
    widget->update();
    widget->repaint();
}

} // namespace

MacWindowManager::MacWindowManager()
{
    connect(this, &MacWindowManager::windowRestored, this, &MacWindowManager::onWindowRestored);
}

MacWindowManager *MacWindowManager::instance()
{
    static MacWindowManager manager;
    return &manager;
}

bool MacWindowManager::minimizeWindow(QWidget *window)
{
    if (!window) {
        qDebug() << "MacWindowManager: 窗口指针为空";
        return false;
    }
    qDebug() << "MacWindowManager: 开始最小化窗口";
    qDebug() << "当前窗口状态:" << window->windowState();
    qDebug() << "窗口标志:" << window->windowFlags();
    // Forgetting the maximised state here would bring a tool window back small.
    const Qt::WindowStates kept =
        window->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen);
    window->setWindowState(kept | Qt::WindowMinimized);
    return true;
}

void MacWindowManager::minimizeOrFallBack(QWidget *window)
{
    if (minimizeWindow(window))
        return;
    qDebug() << "最小化失败，尝试Qt默认方法";
    if (window)
        window->showMinimized();
}

void MacWindowManager::watch(QWidget *window)
{
    window->installEventFilter(this);
}

bool MacWindowManager::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange) {
        auto *window = qobject_cast<QWidget *>(watched);
        const Qt::WindowStates before = static_cast<QWindowStateChangeEvent *>(event)->oldState();
        if (window && before.testFlag(Qt::WindowMinimized) && !window->isMinimized())
            emit windowRestored(window);
    }
    return QObject::eventFilter(watched, event);
}

void MacWindowManager::onWindowRestored(QWidget *window)
{
    qDebug() << "MacWindowManager: 收到窗口恢复信号";
    if (!window)
        return;
    QTimer::singleShot(restoreDelayMs, window, [window] {
        qDebug() << "MacWindowManager: 恢复窗口透明属性";
        window->setAttribute(Qt::WA_TranslucentBackground);
        repaintNow(window);
        const QList<QWidget *> children = window->findChildren<QWidget *>();
        for (QWidget *child : children)
            repaintNow(child);
        qDebug() << "MacWindowManager: 窗口透明属性已恢复";
    });
}
