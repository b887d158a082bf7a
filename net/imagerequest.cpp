#include "net/imagerequest.h"

#include "app/context/accountcontext.h"
#include "net/tlssettings.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

namespace {

constexpr int mostRedirects = 5;
const char refusedProperty[] = "redirectRefused";

} // namespace

bool isImageAddress(const QUrl &url)
{
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"));
}

bool isImageRedirect(const QUrl &from, const QUrl &to)
{
    const bool opens =
        from.scheme() == QLatin1String("https") && to.scheme() != QLatin1String("https");
    const bool carriesToken = to.toString().contains(AccountContext::apiToken);
    return isImageAddress(to) && !opens && (!carriesToken || from.host() == to.host());
}

QNetworkReply *getImage(QNetworkAccessManager *manager, QNetworkRequest request)
{
    applyTlsSettings(&request);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    QNetworkReply *reply = manager->get(request);
    const auto follow = [reply, from = request.url()](const QUrl &to) mutable {
        if (isImageRedirect(from, to)) {
            from = to;
            emit reply->redirectAllowed();
            return;
        }
        reply->setProperty(refusedProperty, true);
        // Not from within its own signal: whoever hears of the end may delete the reply's owner.
        QMetaObject::invokeMethod(reply, &QNetworkReply::abort, Qt::QueuedConnection);
    };
    QObject::connect(reply, &QNetworkReply::redirected, reply, follow);
    return reply;
}

QString imageProblem(const QNetworkReply &reply)
{
    if (reply.property(refusedProperty).toBool())
        return QStringLiteral("图片地址转到了不允许的地址");
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    constexpr int firstBadStatus = 400;
    if (status >= firstBadStatus)
        return QStringLiteral("服务端返回 HTTP %1").arg(status);
    switch (reply.error()) {
    case QNetworkReply::ConnectionRefusedError:
        return QStringLiteral("连接被拒绝");
    case QNetworkReply::RemoteHostClosedError:
        return QStringLiteral("连接中断");
    case QNetworkReply::HostNotFoundError:
        return QStringLiteral("找不到服务器");
    case QNetworkReply::OperationCanceledError:
        return QStringLiteral("已取消");
    case QNetworkReply::SslHandshakeFailedError:
        return QStringLiteral("服务器证书不受信任");
    case QNetworkReply::TooManyRedirectsError:
        return QStringLiteral("图片地址转向次数过多");
    default:
        return QStringLiteral("网络错误 %1").arg(int(reply.error()));
    }
}
