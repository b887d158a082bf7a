#include "widgets/boxes/boxqueue.h"

#include "widgets/boxes/boxdialog.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <utility>

BoxQueue::BoxQueue(QWidget *window)
    : QObject(window ? static_cast<QObject *>(window) : QCoreApplication::instance())
    , window_(window)
{
    if (window)
        window->installEventFilter(this);
}

BoxQueue *BoxQueue::of(QWidget *window)
{
    const QObject *owner = window ? static_cast<QObject *>(window) : QCoreApplication::instance();
    auto *queue = owner->findChild<BoxQueue *>({}, Qt::FindDirectChildrenOnly);
    return queue ? queue : new BoxQueue(window);
}

void BoxQueue::add(QWidget *asker, Request request)
{
    BoxQueue *queue = of(asker ? asker->window() : nullptr);
    request.box.explanation = request.text.explanation;
    queue->boxes_.append({asker, asker != nullptr, std::move(request)});
    queue->comeUp();
}

void BoxQueue::comeUp()
{
    if (up_)
        return;
    while (!boxes_.isEmpty() && boxes_.constFirst().isOrphaned())
        boxes_.removeFirst();
    if (boxes_.isEmpty())
        return;
    const Waiting &box = boxes_.constFirst();
    if (hasGone()) {
        answerLater(boxscript::safeAnswer(box.request.box.buttons));
    } else if (const auto scripted = boxscript::answerFor(box.request.box)) {
        scripted_ = true;
        answerLater(*scripted);
    } else if (QWidget *minimised = minimisedWindow()) {
        minimised->installEventFilter(this);
        QApplication::alert(minimised);
    } else {
        open(box);
    }
}

void BoxQueue::open(const Waiting &box)
{
    up_ = true;
    auto *dialog = new BoxDialog(box.request.box, box.request.text, box.asker);
    dialog_ = dialog;
    dialog->setDefaultButton(box.request.defaultButton);
    // The next Enter belongs to the window in which the user is typing.
    dialog->setAttribute(Qt::WA_ShowWithoutActivating, !isUsed());
    connect(dialog, &QDialog::finished, this, [this, dialog] {
        dialog_ = nullptr;
        dialog->disconnect(this);
        dialog->deleteLater();
        answerLater(dialog->answer());
    });
    // The widget that asked has died, and its box with it.
    connect(dialog, &QObject::destroyed, this, [this] { answerLater(QMessageBox::NoButton); });
    if (window_)
        QApplication::alert(window_);
    dialog->open();
}

/// From the event loop: the answer may delete the window, whose button is still being clicked.
void BoxQueue::answerLater(QMessageBox::StandardButton answer)
{
    up_ = true;
    QMetaObject::invokeMethod(
        this, [this, answer] { finish(answer); }, Qt::QueuedConnection);
}

void BoxQueue::finish(QMessageBox::StandardButton answer)
{
    const Waiting box = boxes_.takeFirst();
    up_ = false;
    if (std::exchange(scripted_, false))
        boxscript::noteShown(box.request.box);
    const QPointer<BoxQueue> guard(this);
    if (box.request.then && !box.isOrphaned())
        box.request.then(answer);
    if (guard)
        comeUp();
}

bool BoxQueue::hasGone() const
{
    // One that is not yet shown will be.
    return window_ && window_->isHidden() && window_->testAttribute(Qt::WA_WState_ExplicitShowHide);
}

/// Whether the user is at this window, or at none of the program's.
bool BoxQueue::isUsed() const
{
    const QWidget *active = QApplication::activeWindow();
    return !active || !window_ || active == window_ || window_->isAncestorOf(active) ||
           active->isAncestorOf(window_);
}

/// The window or, for a dialog, one that it belongs to.
QWidget *BoxQueue::minimisedWindow() const
{
    QWidget *window = window_;
    while (window && !window->isMinimized())
        window = window->parentWidget() ? window->parentWidget()->window() : nullptr;
    return window;
}

bool BoxQueue::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange) {
        // The window is still on its way to the screen.
        QMetaObject::invokeMethod(this, &BoxQueue::comeUp, Qt::QueuedConnection);
    } else if (event->type() == QEvent::Hide && watched == window_ && !event->spontaneous()) {
        if (dialog_)
            dialog_->reject();
        else
            comeUp();
    }
    return QObject::eventFilter(watched, event);
}
