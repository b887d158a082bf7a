#include "distribution/run/downloadreports.h"

#include "distribution/rules/distributionrequests.h"
#include "net/servicecall.h"

#include <QDebug>

namespace {

constexpr int reportsAtOnce = 4;

} // namespace

DownloadReports::DownloadReports(QObject *parent) : QObject(parent), queue_(reportsAtOnce)
{
    connect(&queue_, &RequestQueue::idle, this, &DownloadReports::allAnswered);
}

void DownloadReports::add(const QString &imageId, const orderqueries::Identity &identity)
{
    const QByteArray body = distributionrequests::downloadedBody(imageId, identity);
    // Not the queue's scope: what is under way is to reach the service, waited for or not.
    queue_.add([this, body](QObject *, const RequestQueue::Ended &ended) {
        callService(this, distributionrequests::downloadedAction, body,
                    [ended](const ServiceReply &reply) {
                        if (ended() && !reply.isSuccess())
                            qDebug() << "下载状态提交失败:" << reply.message;
                    });
    });
}

void DownloadReports::abandon()
{
    if (!isBusy())
        return;
    queue_.abandon();
    emit allAnswered();
}
