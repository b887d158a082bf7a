#include "distribution/downloadreports.h"

#include "distribution/distributionrequests.h"
#include "net/servicecall.h"

#include <QDebug>

namespace {

constexpr int reportsAtOnce = 4;

} // namespace

DownloadReports::DownloadReports(QObject *parent) : QObject(parent)
{
}

void DownloadReports::add(const QString &imageId, const orderqueries::Identity &identity)
{
    waiting_.enqueue(distributionrequests::downloadedBody(imageId, identity));
    feed();
}

void DownloadReports::abandon()
{
    waiting_.clear();
    if (!isBusy())
        return;
    underWay_ = 0;
    emit allAnswered();
}

void DownloadReports::feed()
{
    while (!waiting_.isEmpty() && underWay_ < reportsAtOnce) {
        ++underWay_;
        callService(this, distributionrequests::downloadedAction, waiting_.dequeue(),
                    [this](const ServiceReply &reply) {
                        if (!isBusy())
                            return; // abandoned
                        --underWay_;
                        if (!reply.isSuccess())
                            qDebug() << "下载状态提交失败:" << reply.message;
                        feed();
                        if (!isBusy())
                            emit allAnswered();
                    });
    }
}
