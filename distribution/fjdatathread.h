#pragma once

#include "distribution/distributiontask.h"

#include <QRunnable>

#include <functional>
#include <mutex>
#include <optional>

/// One file operation of a distribution run, on a thread of a pool, which deletes it. Whatever
/// happens, exceptions included, it reports its end exactly once, on that thread: with nothing when
/// the run was stopped before it began.
class FJDataThread : public QRunnable
{
public:
    using Report = std::function<void(const std::optional<TaskResult> &result)>;

    FJDataThread(DistributionTask task, StopFlag stopped, PerformTask perform, Report report);

    void run() override;

private:
    TaskResult result() const;

    std::mutex handOver_; ///< brings the members to the pool's thread, whatever the pool does
    DistributionTask task_;
    PerformTask perform_;
    Report report_;
};
