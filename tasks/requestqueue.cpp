#include "tasks/requestqueue.h"

RequestQueue::RequestQueue(int atOnce, QObject *parent)
    : QObject(parent), atOnce_(atOnce), scope_(std::make_unique<QObject>())
{
}

RequestQueue::~RequestQueue() = default;

void RequestQueue::add(const Request &request)
{
    busy_ = true;
    waiting_.enqueue(request);
    feed();
}

void RequestQueue::abandon()
{
    waiting_.clear();
    underWay_ = 0;
    busy_ = false;
    round_ = rounds_.next();
    // Deleted later, since this may be called from one of its answers.
    scope_.release()->deleteLater();
    scope_ = std::make_unique<QObject>();
}

void RequestQueue::feed()
{
    while (underWay_ < atOnce_ && !waiting_.isEmpty()) {
        ++underWay_;
        waiting_.dequeue()(scope_.get(), [this, round = round_] {
            if (!round.isCurrent())
                return false;
            --underWay_;
            // Later, so that whoever hears of this answer hears of it before the next one.
            QMetaObject::invokeMethod(this, &RequestQueue::feed, Qt::QueuedConnection);
            return true;
        });
    }
    if (busy_ && pending() == 0) {
        busy_ = false;
        emit idle();
    }
}
