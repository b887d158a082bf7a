#pragma once

#include <QFutureInterface>
#include <QFutureWatcher>
#include <QObject>
#include <QRunnable>
#include <QThreadPool>

#include <mutex>
#include <utility>

/// The threads for short looks at disks and shares (existence, listings, creating folders): a share
/// that has gone away may hang each of them for a minute, and the interface must not notice.
QThreadPool *diskPool();

namespace background {

/// Work on its way to a thread of the pool, and its result on its way back.
template <typename Work> class Task : public QRunnable
{
public:
    using Result = decltype(std::declval<Work &>()());

    explicit Task(Work work) : work_(std::move(work))
    {
        // Hands the members over to the thread that takes the mutex in run(), whatever the pool
        // does.
        const std::lock_guard<std::mutex> handOver(mutex_);
        result_.reportStarted();
    }

    QFuture<Result> future() { return result_.future(); }

    void run() override
    {
        const std::lock_guard<std::mutex> handOver(mutex_);
        result_.reportResult(work_());
        result_.reportFinished();
    }

private:
    std::mutex mutex_;
    Work work_;
    QFutureInterface<Result> result_;
};

} // namespace background

/// Runs \a work (plain values in, a value out) on the disk pool and then \a done with its result on
/// the thread of \a context. When \a context dies first, \a done never runs. Throwing is not
/// allowed.
template <typename Work, typename Done> void inBackground(QObject *context, Work work, Done done)
{
    auto *task = new background::Task<Work>(std::move(work));
    using Result = typename background::Task<Work>::Result;
    auto *watcher = new QFutureWatcher<Result>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context,
                     [watcher, done = std::move(done)] {
                         watcher->deleteLater();
                         done(watcher->result());
                     });
    watcher->setFuture(task->future());
    diskPool()->start(task);
}
