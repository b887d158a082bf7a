#include "distribution/fjdatathread.h"

#include <QDebug>

#include <exception>
#include <utility>

FJDataThread::FJDataThread(DistributionTask task, StopFlag stopped, PerformTask perform,
                           Report report)
{
    const std::lock_guard<std::mutex> lock(handOver_);
    task_ = std::move(task);
    task_.stopped = std::move(stopped);
    perform_ = std::move(perform);
    report_ = std::move(report);
}

void FJDataThread::run()
{
    const std::lock_guard<std::mutex> lock(handOver_);
    const bool stopped = task_.stopped && *task_.stopped;
    report_(stopped ? std::nullopt : std::make_optional(result()));
}

TaskResult FJDataThread::result() const
{
    QString error;
    try {
        return perform_(task_);
    } catch (const std::exception &exception) {
        error = QStringLiteral("处理异常: %1").arg(QString::fromUtf8(exception.what()));
    } catch (...) {
        error = QStringLiteral("未知异常");
    }
    qDebug().noquote() << error;
    return {false, task_.type, task_.imgName, task_.imageId, task_.imgName + error, {}};
}
