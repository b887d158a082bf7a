#include "tests/support/democlient.h"

#include "app/context/accountcontext.h"
#include "net/basereq.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

void DemoClient::reset()
{
    post(QStringLiteral("reset"), {});
}

QJsonArray DemoClient::requests(const QString &action)
{
    QString path = QStringLiteral("requests");
    if (!action.isEmpty())
        path += QStringLiteral("?action=") + action;
    return QJsonDocument::fromJson(call(path, nullptr)).array();
}

void DemoClient::clearRequests()
{
    post(QStringLiteral("requests/clear"), {});
}

void DemoClient::misbehave(const QString &action, const QString &kind, QJsonObject more)
{
    more.insert(QStringLiteral("action"), action);
    more.insert(QStringLiteral("kind"), kind);
    post(QStringLiteral("misbehave"), more);
}

void DemoClient::release()
{
    post(QStringLiteral("release"), {});
}

QJsonObject DemoClient::state()
{
    return QJsonDocument::fromJson(call(QStringLiteral("state"), nullptr)).object();
}

void DemoClient::changeOrder(const QString &orderId, const QJsonObject &fields)
{
    post(QStringLiteral("orders"),
         {{QStringLiteral("id"), orderId}, {QStringLiteral("fields"), fields}});
}

void DemoClient::choosePhotos(const QString &orderId, int count)
{
    post(QStringLiteral("orders"),
         {{QStringLiteral("id"), orderId}, {QStringLiteral("photos"), count}});
}

void DemoClient::addOrders(int count, const QString &shopId)
{
    post(QStringLiteral("orders"),
         {{QStringLiteral("add"), count}, {QStringLiteral("shopid"), shopId}});
}

void DemoClient::post(const QString &path, const QJsonObject &body)
{
    const QByteArray bytes = QJsonDocument(body).toJson(QJsonDocument::Compact);
    call(path, &bytes);
}

QByteArray DemoClient::call(const QString &path, const QByteArray *body)
{
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(AccountContext::baseUrl + QStringLiteral("/demo/") + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    BaseReq::applyTlsSettings(&request);
    QNetworkReply *reply = body ? manager.post(request, *body) : manager.get(request);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    const QByteArray answer = reply->readAll();
    if (reply->error() != QNetworkReply::NoError)
        qFatal("demo service: %s: %s", qPrintable(reply->errorString()), answer.constData());
    return answer;
}
