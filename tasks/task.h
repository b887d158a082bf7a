#pragma once

#include <QString>

#include <functional>

/// Does \a work. Returns what it threw, as the user and the log read it; nothing when it came to
/// its end. No exception leaves a thread of the program but through here.
QString problemOf(const std::function<void()> &work);

/// A piece of work for a WorkerPool, which runs it once, on a thread of its own. It tells its end
/// by itself, whatever happens.
class Task
{
public:
    Task() = default;
    virtual ~Task() = default;
    Task(const Task &) = delete;
    Task &operator=(const Task &) = delete;

    /// Performs; an exception becomes a failure.
    void run();

private:
    virtual void perform() = 0;
    /// perform() threw; \a problem says what.
    virtual void failed(const QString &problem) = 0;
};
