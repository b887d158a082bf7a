#pragma once

#include "platform/pathform.h"
#include "tasks/workerpool.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>

/// The threads for looks at disks and shares (existence, listings, creating folders). A share that
/// has gone away may hang a look for a minute: at most two go on for one volume or share, and those
/// for the others go on.
WorkerPool &diskPool();

/// The threads for what computes and touches no disk, such as reading a reply: as many as the
/// machine runs at once.
WorkerPool &processorPool();

namespace background {

/// The way back to the thread of a context, as long as that lives.
class Answer : public QObject
{
public:
    /// Rings the answer's bell, from any thread.
    class Bell
    {
    public:
        void ring();

    private:
        friend class Answer;
        std::mutex mutex_;
        Answer *answer_ = nullptr; ///< null once nobody listens
    };

    /// \a deliver runs once, on this thread, when the bell has rung.
    Answer(QObject *context, std::function<void()> deliver);
    ~Answer() override;

    const std::shared_ptr<Bell> &bell() const { return bell_; }

protected:
    bool event(QEvent *event) override;

private:
    std::function<void()> deliver_;
    std::shared_ptr<Bell> bell_ = std::make_shared<Bell>();
};

/// The job for a pool's thread that does \a work and brings its result to \a done.
template <typename Work, typename Done>
std::function<void()> job(QObject *context, Work work, Done done)
{
    using Result = std::invoke_result_t<Work &>;
    if constexpr (std::is_void_v<Result>) {
        const auto *answer = new Answer(context, std::move(done));
        return [work = std::move(work), bell = answer->bell()]() mutable {
            work();
            bell->ring();
        };
    } else {
        const auto result = std::make_shared<std::optional<Result>>();
        const auto *answer = new Answer(
            context, [result, done = std::move(done)]() mutable { done(std::move(**result)); });
        return [work = std::move(work), result, bell = answer->bell()]() mutable {
            result->emplace(work());
            bell->ring();
        };
    }
}

} // namespace background

/// Runs \a work (plain values in, a value or nothing out) on a thread of \a pool and then \a done
/// with its result on the thread of \a context. When \a context dies first, \a done never runs.
/// Call it on that thread. Throwing is not allowed.
template <typename Work, typename Done>
void inPool(WorkerPool *pool, QObject *context, Work work, Done done)
{
    pool->start(background::job(context, std::move(work), std::move(done)));
}

/// The same on the disk pool, for \a work that touches the disks that \a paths (wire form or this
/// machine's) lie on.
template <typename Work, typename Done>
void onDisk(QObject *context, const QStringList &paths, Work work, Done done)
{
    diskPool().start(background::job(context, std::move(work), std::move(done)),
                     platform::volumesOf(paths));
}

template <typename Work, typename Done>
void onDisk(QObject *context, const QString &path, Work work, Done done)
{
    onDisk(context, QStringList(path), std::move(work), std::move(done));
}

/// The same on the processor pool, for \a work that touches no disk.
template <typename Work, typename Done> void onProcessor(QObject *context, Work work, Done done)
{
    inPool(&processorPool(), context, std::move(work), std::move(done));
}
