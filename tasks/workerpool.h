#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class Task;

/// Threads that do work in the order in which it comes, at most so many pieces at once; threads
/// come when there is work and go when there has been none for a while.
///
/// Work may name the volumes that it touches; the pool can be told how much of it may go on at once
/// for one volume. What is beyond that waits without a thread, and later work passes it.
///
/// Give it work from any thread. What is handed over, and what the work leaves behind when the pool
/// says that it is done, needs no lock of its own.
class WorkerPool
{
public:
    static constexpr int expiryMs = 30000;

    /// \a name is that of the threads.
    WorkerPool(const QString &name, int mostThreads, int threadExpiryMs = expiryMs);
    /// Does what still waits, and waits for its end.
    ~WorkerPool();
    WorkerPool(const WorkerPool &) = delete;
    WorkerPool &operator=(const WorkerPool &) = delete;

    void setMostForOneVolume(int count);

    /// Holds \a task while it waits and runs.
    void start(const std::shared_ptr<Task> &task);
    /// Throwing ends the program: problemOf() is for work that might.
    void start(std::function<void()> work, const QStringList &volumes = {});

    /// Takes \a task back; false when it has begun.
    bool takeBack(const Task *task);
    /// Forgets what has not begun.
    void clear();
    /// Waits until nothing waits or runs any more; false after \a timeoutMs, which may be -1 for
    /// ever.
    bool waitForDone(int timeoutMs = -1);
    bool isDone() const;

    /// Lets go of \a pool without waiting: forgets what has not begun, and leaves what hangs to end
    /// some time, at the latest before the process does.
    static void retire(std::unique_ptr<WorkerPool> pool);

private:
    struct Floor;
    class Thread;

    std::unique_ptr<Floor> floor_;
};
