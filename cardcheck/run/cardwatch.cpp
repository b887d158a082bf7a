#include "cardcheck/run/cardwatch.h"

#include "cardcheck/run/cardlister.h"
#include "tasks/background.h"

namespace {

constexpr int intervalMs = 3000;

QVector<platform::RemovableDrive> camerasCards()
{
    QVector<platform::RemovableDrive> cards;
    const auto drives = platform::removableDrives();
    for (const platform::RemovableDrive &drive : drives) {
        if (cardlister::isCamerasCard(drive.root))
            cards.append(drive);
    }
    return cards;
}

} // namespace

CardWatch::CardWatch(QObject *parent)
    : QObject(parent), pool_(std::make_unique<WorkerPool>(QStringLiteral("card watch"), 1))
{
    timer_.setInterval(intervalMs);
    connect(&timer_, &QTimer::timeout, this, &CardWatch::look);
}

CardWatch::~CardWatch()
{
    WorkerPool::retire(std::move(pool_));
}

void CardWatch::start()
{
    timer_.start();
    look();
}

void CardWatch::look()
{
    if (std::exchange(isLooking_, true))
        return;
    inPool(pool_.get(), this, camerasCards, [this](const QVector<platform::RemovableDrive> &cards) {
        isLooking_ = false;
        if (cards == cards_)
            return;
        cards_ = cards;
        emit changed();
    });
}
