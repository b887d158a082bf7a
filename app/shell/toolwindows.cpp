#include "app/shell/toolwindows.h"

#include "orderbrowser/window/orderlist.h"

#include <algorithm>

std::shared_ptr<ToolWindows> ToolWindows::create(const QVector<Tool> &tools)
{
    return std::shared_ptr<ToolWindows>(new ToolWindows(tools));
}

void ToolWindows::open(const QString &label)
{
    open(label, {});
}

void ToolWindows::open(const QString &label, const OrderPlace &place)
{
    const auto tool = std::find_if(tools_.cbegin(), tools_.cend(),
                                   [&label](const Tool &each) { return each.label == label; });
    if (tool == tools_.cend() || !tool->makeWindow)
        return;
    auto *destination = dynamic_cast<OrderDestination *>(shown(*tool));
    if (destination && !place.orderPhotoId.isEmpty())
        destination->goTo(place);
}

FramelessWindow *ToolWindows::shown(const Tool &tool)
{
    if (FramelessWindow *window = windows_.value(tool.label)) {
        window->showMaximized();
        window->raise();
        window->activateWindow();
        return window;
    }
    FramelessWindow *window = tool.makeWindow();
    window->setAttribute(Qt::WA_DeleteOnClose);
    // Forgotten as soon as it has gone for the user; what it still has to end it ends hidden.
    QObject::connect(window, &FramelessWindow::closed, window,
                     [windows = weak_from_this(), label = tool.label] {
                         if (const auto all = windows.lock())
                             all->windows_.remove(label);
                     });
    if (const auto *browser = qobject_cast<OrderList *>(window)) {
        QObject::connect(browser, &OrderList::openToolRequested, browser,
                         [all = shared_from_this()](const QString &card, const QString &branch,
                                                    const QString &orderPhotoId,
                                                    const QString &orderNumber) {
                             all->open(card, {branch, orderPhotoId, orderNumber});
                         });
    }
    windows_.insert(tool.label, window);
    window->showMaximized();
    return window;
}
