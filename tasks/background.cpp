#include "tasks/background.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

WorkerPool &diskPool()
{
    // Enough for many dead shares at once; names in replies may make up any number of them.
    constexpr int mostThreads = 64;
    constexpr int mostForOneVolume = 2;
    static WorkerPool pool(QStringLiteral("disk"), mostThreads);
    static const bool prepared = [] {
        pool.setMostForOneVolume(mostForOneVolume);
        return true;
    }();
    Q_UNUSED(prepared)
    return pool;
}

WorkerPool &processorPool()
{
    static WorkerPool pool(QStringLiteral("processor"), QThread::idealThreadCount());
    return pool;
}

namespace background {

void Answer::Bell::ring()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    if (answer_)
        QCoreApplication::postEvent(answer_, new QEvent(QEvent::User));
}

Answer::Answer(QObject *context, std::function<void()> deliver)
    : QObject(context), deliver_(std::move(deliver))
{
    bell_->answer_ = this;
}

Answer::~Answer()
{
    const std::lock_guard<std::mutex> lock(bell_->mutex_);
    bell_->answer_ = nullptr;
}

bool Answer::event(QEvent *event)
{
    if (event->type() != QEvent::User)
        return QObject::event(event);
    {
        // Whoever rang held it: what was written before is there now.
        const std::lock_guard<std::mutex> handOver(bell_->mutex_);
    }
    deleteLater();
    const auto deliver = std::move(deliver_);
    deliver(); // may end the context, and this with it
    return true;
}

} // namespace background
