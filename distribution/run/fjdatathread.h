#pragma once

#include "distribution/plan/distributiontask.h"
#include "tasks/task.h"

#include <optional>

/// One file operation of a distribution run, for a thread of a pool. Whatever happens, exceptions
/// included, it has a result afterwards, unless the run was stopped before it began.
class FJDataThread : public Task
{
public:
    FJDataThread(DistributionTask task, const StopFlag &stopped, PerformTask perform);

    /// After run().
    const std::optional<TaskResult> &result() const { return result_; }

private:
    void perform() override;
    void failed(const QString &problem) override;

    DistributionTask task_;
    PerformTask perform_;
    std::optional<TaskResult> result_;
};
