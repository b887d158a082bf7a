#include "distribution/run/fjdatathread.h"

#include <utility>

FJDataThread::FJDataThread(DistributionTask task, const StopFlag &stopped, PerformTask perform)
    : task_(std::move(task)), perform_(std::move(perform))
{
    task_.stopped = stopped;
}

void FJDataThread::perform()
{
    if (!task_.stopped.isRaised())
        result_ = perform_(task_);
}

void FJDataThread::failed(const QString &problem)
{
    result_ = TaskResult{false, task_.type, task_.imgName, task_.imageId, task_.imgName + problem,
                         {},    {}};
}
