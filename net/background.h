#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QThreadPool>
#include <QtConcurrentRun>

#include <functional>
#include <utility>

/// The threads for short looks at disks and shares (existence, listings, creating folders): a share
/// that has gone away may hang each of them for a minute, and the interface must not notice.
QThreadPool *diskPool();

/// Runs \a work (plain values in, a value out) on the disk pool and then \a done with its result on
/// the thread of \a context. When \a context dies first, \a done never runs. Throwing is not
/// allowed.
template <typename Work, typename Done> void inBackground(QObject *context, Work work, Done done)
{
    using Result = decltype(work());
    auto *watcher = new QFutureWatcher<Result>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context,
                     [watcher, done = std::move(done)] {
                         watcher->deleteLater();
                         done(watcher->result());
                     });
    watcher->setFuture(QtConcurrent::run(diskPool(), std::move(work)));
}
