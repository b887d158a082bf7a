#include "thumbnails/retiredwidgets.h"

#include <QByteArray>
#include <QWidget>

namespace {

constexpr int intervalMs = 50;
constexpr int atOnce = 40; // children deleted between two events
constexpr int farAway = 1000 * 1000;

/// Some C libraries put small pieces of freed memory together only when a large one is asked for:
/// a few at a time so, and not those of thousands of widgets at once.
void tidyMemory()
{
    constexpr int largePiece = 64 * 1024;
    const QByteArray asked(largePiece, Qt::Uninitialized);
    Q_UNUSED(asked)
}

} // namespace

RetiredWidgets::RetiredWidgets(QObject *parent) : QObject(parent)
{
    timer_.setInterval(intervalMs);
    connect(&timer_, &QTimer::timeout, this, &RetiredWidgets::deleteSome);
}

void RetiredWidgets::add(QWidget *widget)
{
    widget->move(0, -farAway);
    widgets_.append(widget);
    timer_.start();
}

void RetiredWidgets::deleteSome()
{
    for (int left = atOnce; left > 0 && !widgets_.isEmpty(); --left) {
        QWidget *widget = widgets_.constLast();
        const QObjectList &children = widget->children();
        if (children.isEmpty()) {
            delete widget;
            widgets_.removeLast();
        } else {
            delete children.last();
        }
    }
    tidyMemory();
    if (widgets_.isEmpty())
        timer_.stop();
}
