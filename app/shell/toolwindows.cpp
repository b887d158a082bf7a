#include "app/shell/toolwindows.h"

#include "cardcheck/window/cardcheck.h"
#include "cardcheck/window/ordercheck.h"
#include "fileimport/window/importfiles.h"
#include "orderbrowser/window/orderlist.h"
#include "photoimport/window/tfhome.h"

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
    leadOn(window);
    windows_.insert(tool.label, window);
    window->showMaximized();
    return window;
}

/// Lets \a window lead to other tools, none of which it knows, for as long as it is open.
void ToolWindows::leadOn(FramelessWindow *window)
{
    const auto all = shared_from_this();
    const auto checkOrder = [all](const OrderToCheck &order) { all->checkOrder(order); };
    const auto checkCard = [all] { all->open(cardCheck().label); };
    const auto openAt = [all](const QString &card, const OrderPlace &place) {
        all->open(card, place);
    };
    if (const auto *browser = qobject_cast<OrderList *>(window)) {
        QObject::connect(browser, &OrderList::openToolRequested, browser,
                         [openAt](const QString &card, const QString &branch,
                                  const QString &orderPhotoId, const QString &orderNumber) {
                             openAt(card, {branch, orderPhotoId, orderNumber});
                         });
        QObject::connect(browser, &OrderList::orderCheckRequested, browser, checkOrder);
    } else if (const auto *import = qobject_cast<ImportFiles *>(window)) {
        QObject::connect(import, &ImportFiles::cardCheckRequested, import, checkCard);
        QObject::connect(import, &ImportFiles::orderCheckRequested, import, checkOrder);
    } else if (const auto *photos = qobject_cast<tfhome *>(window)) {
        QObject::connect(photos, &tfhome::cardCheckRequested, photos, checkCard);
        QObject::connect(photos, &tfhome::orderCheckRequested, photos, checkOrder);
    } else if (const auto *cards = qobject_cast<CardCheck *>(window)) {
        QObject::connect(cards, &CardCheck::importRequested, cards, openAt);
    } else if (const auto *order = qobject_cast<OrderCheck *>(window)) {
        QObject::connect(order, &OrderCheck::openToolRequested, order, openAt);
    }
}

void ToolWindows::checkOrder(const OrderToCheck &order)
{
    static const Tool tool{
        QStringLiteral("核对订单"), {}, []() -> FramelessWindow * { return new OrderCheck; }};
    if (auto *check = qobject_cast<OrderCheck *>(shown(tool)))
        check->check(order);
}
