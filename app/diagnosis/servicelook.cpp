#include "app/diagnosis/servicelook.h"

#include "net/tlssettings.h"

#include <QElapsedTimer>
#include <QNetworkReply>

#include <utility>

namespace {

QString lineOf(const QNetworkReply &reply, qint64 elapsedMs)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status > 0)
        return QStringLiteral("有应答：HTTP %1，%2 ms").arg(status).arg(elapsedMs);
    return QStringLiteral("没有应答：%1，%2 ms").arg(reply.errorString()).arg(elapsedMs);
}

} // namespace

void ServiceLook::look(const QString &serviceUrl, std::function<void(const QString &line)> told)
{
    if (serviceUrl.isEmpty()) {
        told(QStringLiteral("没有配置服务地址"));
        return;
    }
    QNetworkRequest request{QUrl(serviceUrl)};
    applyTlsSettings(&request);
    request.setTransferTimeout(patienceMs);
    QElapsedTimer timer;
    timer.start();
    QNetworkReply *reply = manager_.head(request);
    connect(reply, &QNetworkReply::finished, this, [reply, timer, told = std::move(told)] {
        reply->deleteLater();
        told(lineOf(*reply, timer.elapsed()));
    });
}
