#include "tests/support/democlient.h"

#include "app/context/accountcontext.h"
#include "net/tlssettings.h"
#include "tests/support/text.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

void DemoClient::reset()
{
    post("reset"_s, {});
}

QJsonArray DemoClient::requests(const QString &action)
{
    QString path = "requests"_s;
    if (!action.isEmpty())
        path += "?action="_s + action;
    return QJsonDocument::fromJson(call(path, nullptr)).array();
}

void DemoClient::clearRequests()
{
    post("requests/clear"_s, {});
}

void DemoClient::misbehave(const QString &action, const QString &kind, QJsonObject more)
{
    more.insert("action"_s, action);
    more.insert("kind"_s, kind);
    post("misbehave"_s, more);
}

void DemoClient::hold(const QString &action, int times)
{
    misbehave(action, "hold"_s, {{"times"_s, times}});
}

void DemoClient::refuse(const QString &action, const QString &message)
{
    misbehave(action, "refuse"_s, {{"message"_s, message}});
}

QString DemoClient::body(const QString &action, int index)
{
    const QJsonArray sent = requests(action);
    return sent.at(index < 0 ? sent.size() + index : index)["body"_s].toString();
}

void DemoClient::release()
{
    post("release"_s, {});
}

QJsonObject DemoClient::state()
{
    return QJsonDocument::fromJson(call("state"_s, nullptr)).object();
}

void DemoClient::changeOrder(const QString &orderId, const QJsonObject &fields)
{
    post("orders"_s, {{"id"_s, orderId}, {"fields"_s, fields}});
}

void DemoClient::choosePhotos(const QString &orderId, int count)
{
    post("orders"_s, {{"id"_s, orderId}, {"photos"_s, count}});
}

void DemoClient::addOrders(int count, const QString &shopId)
{
    post("orders"_s, {{"add"_s, count}, {"shopid"_s, shopId}});
}

void DemoClient::post(const QString &path, const QJsonObject &body)
{
    const QByteArray bytes = QJsonDocument(body).toJson(QJsonDocument::Compact);
    call(path, &bytes);
}

QByteArray DemoClient::call(const QString &path, const QByteArray *body)
{
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(AccountContext::baseUrl + "/demo/"_s + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json"_s);
    applyTlsSettings(&request);
    QNetworkReply *reply = body ? manager.post(request, *body) : manager.get(request);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    const QByteArray answer = reply->readAll();
    if (reply->error() != QNetworkReply::NoError)
        qFatal("demo service: %s: %s", qPrintable(reply->errorString()), answer.constData());
    return answer;
}
