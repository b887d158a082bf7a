#pragma once

#include "distribution/distributiontask.h"

/// The file operations of a distribution run. Everything blocks: for worker threads. Tasks share
/// nothing, so that any number may run at once.
class FJDataOperate
{
public:
    FJDataOperate() = delete;

    /// Does what \a task says. A result without a type: there is no such task.
    static TaskResult perform(const DistributionTask &task);
};
