#include "distribution/run/fjdatathread.h"

#include "files/paths.h"
#include "files/safename.h"

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
    FileOutcome file;
    file.target = joinLocalPath(task_.targetFolder, safeFileName(task_.imgName));
    result_ = TaskResult{false,  task_.type, task_.imgName, task_.imageId, task_.imgName + problem,
                         {file}, {}};
}
