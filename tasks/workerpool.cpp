#include "tasks/workerpool.h"

#include "tasks/task.h"

#include <QHash>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <vector>

namespace {

struct Job
{
    std::function<void()> work;
    QStringList volumes;
    const Task *task = nullptr; ///< when it can be taken back
};

} // namespace

/// Where givers and threads meet. Its own lock, unlike those inside Qt, is one that tools that look
/// for races see: it is what hands the work over.
struct WorkerPool::Floor
{
    Floor(QString threadName, int most, int expiry)
        : name(std::move(threadName)), mostThreads(most), threadExpiry(expiry)
    {
    }

    void add(Job job);
    void serve(Thread *self);
    void endThreads();

    const QString name;
    const int mostThreads;
    const std::chrono::milliseconds threadExpiry;

    mutable std::mutex mutex; // guards everything below
    std::condition_variable workCame;
    std::condition_variable workDone;
    int mostForOneVolume = 0; ///< 0: no bound
    std::list<Job> waiting;
    QHash<QString, int> volumesInUse;
    int running = 0;
    bool ending = false;
    std::vector<std::unique_ptr<Thread>> threads;
    std::vector<std::unique_ptr<Thread>> ended; ///< or about to

    // With the mutex held.
    bool isDone() const { return running == 0 && waiting.empty(); }
    bool mayBegin(const Job &job) const;
    std::list<Job>::iterator nextJob();
    void employ();
    void perform(std::unique_lock<std::mutex> &lock, Job job);
};

class WorkerPool::Thread : public QThread
{
public:
    explicit Thread(Floor *floor) : floor_(floor) { setObjectName(floor->name); }
    ~Thread() override { wait(); }

private:
    void run() override { floor_->serve(this); }

    Floor *floor_;
};

bool WorkerPool::Floor::mayBegin(const Job &job) const
{
    return mostForOneVolume == 0 ||
           std::all_of(job.volumes.cbegin(), job.volumes.cend(), [this](const QString &volume) {
               return volumesInUse.value(volume) < mostForOneVolume;
           });
}

std::list<Job>::iterator WorkerPool::Floor::nextJob()
{
    return std::find_if(waiting.begin(), waiting.end(),
                        [this](const Job &job) { return mayBegin(job); });
}

/// Sees to it that what may begin finds a thread.
void WorkerPool::Floor::employ()
{
    int idle = int(threads.size()) - running;
    int wanted = 0;
    for (auto job = waiting.cbegin(); job != waiting.cend() && wanted <= idle; ++job) {
        if (!mayBegin(*job))
            continue;
        if (++wanted > idle && int(threads.size()) < mostThreads) {
            threads.push_back(std::make_unique<Thread>(this));
            threads.back()->start();
            ++idle;
        }
    }
    if (wanted > 0)
        workCame.notify_all();
}

void WorkerPool::Floor::add(Job job)
{
    std::vector<std::unique_ptr<Thread>> gone; // waited for, and let go of, without the lock
    const std::lock_guard<std::mutex> lock(mutex);
    gone.swap(ended);
    waiting.push_back(std::move(job));
    employ();
}

void WorkerPool::Floor::serve(Thread *self)
{
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        const auto next = nextJob();
        if (next != waiting.end()) {
            Job job = std::move(*next);
            waiting.erase(next);
            perform(lock, std::move(job));
            continue;
        }
        if (ending && waiting.empty())
            return;
        const bool waited = workCame.wait_for(lock, threadExpiry) == std::cv_status::timeout;
        if (!waited || ending || nextJob() != waiting.end())
            continue;
        const auto mine = std::find_if(threads.begin(), threads.end(),
                                       [self](const auto &thread) { return thread.get() == self; });
        ended.push_back(std::move(*mine));
        threads.erase(mine);
        return;
    }
}

void WorkerPool::Floor::perform(std::unique_lock<std::mutex> &lock, Job job)
{
    ++running;
    for (const QString &volume : qAsConst(job.volumes))
        ++volumesInUse[volume];
    lock.unlock();
    job.work();
    job.work = nullptr; // what it held goes here, not under the lock
    lock.lock();
    --running;
    for (const QString &volume : qAsConst(job.volumes)) {
        if (--volumesInUse[volume] == 0)
            volumesInUse.remove(volume);
    }
    employ();
    if (isDone()) {
        workDone.notify_all();
        workCame.notify_all();
    }
}

void WorkerPool::Floor::endThreads()
{
    std::vector<std::unique_ptr<Thread>> all;
    std::vector<std::unique_ptr<Thread>> gone;
    {
        std::unique_lock<std::mutex> lock(mutex);
        workDone.wait(lock, [this] { return isDone(); });
        ending = true;
        all.swap(threads);
        gone.swap(ended);
        workCame.notify_all();
    }
}

WorkerPool::WorkerPool(const QString &name, int mostThreads, int threadExpiryMs)
    : floor_(std::make_unique<Floor>(name, std::max(mostThreads, 1), threadExpiryMs))
{
}

WorkerPool::~WorkerPool()
{
    floor_->endThreads();
}

void WorkerPool::setMostForOneVolume(int count)
{
    const std::lock_guard<std::mutex> lock(floor_->mutex);
    floor_->mostForOneVolume = count;
}

void WorkerPool::start(const std::shared_ptr<Task> &task)
{
    floor_->add({[task] { task->run(); }, {}, task.get()});
}

void WorkerPool::start(std::function<void()> work, const QStringList &volumes)
{
    floor_->add({std::move(work), volumes, nullptr});
}

bool WorkerPool::takeBack(const Task *task)
{
    std::list<Job> taken;
    const std::lock_guard<std::mutex> lock(floor_->mutex);
    const auto job = std::find_if(floor_->waiting.begin(), floor_->waiting.end(),
                                  [task](const Job &waiting) { return waiting.task == task; });
    if (job == floor_->waiting.end())
        return false;
    taken.splice(taken.end(), floor_->waiting, job);
    if (floor_->isDone())
        floor_->workDone.notify_all();
    return true;
}

void WorkerPool::clear()
{
    std::list<Job> forgotten; // goes without the lock
    const std::lock_guard<std::mutex> lock(floor_->mutex);
    forgotten.swap(floor_->waiting);
    if (floor_->isDone())
        floor_->workDone.notify_all();
}

bool WorkerPool::waitForDone(int timeoutMs)
{
    std::unique_lock<std::mutex> lock(floor_->mutex);
    const auto done = [this] { return floor_->isDone(); };
    if (timeoutMs >= 0)
        return floor_->workDone.wait_for(lock, std::chrono::milliseconds(timeoutMs), done);
    floor_->workDone.wait(lock, done);
    return true;
}

bool WorkerPool::isDone() const
{
    const std::lock_guard<std::mutex> lock(floor_->mutex);
    return floor_->isDone();
}

void WorkerPool::retire(std::unique_ptr<WorkerPool> pool)
{
    static std::mutex mutex;
    static std::vector<std::unique_ptr<WorkerPool>> retired;
    pool->clear();
    const std::lock_guard<std::mutex> lock(mutex);
    retired.erase(std::remove_if(retired.begin(), retired.end(),
                                 [](const auto &earlier) { return earlier->isDone(); }),
                  retired.end());
    if (!pool->isDone())
        retired.push_back(std::move(pool));
}
