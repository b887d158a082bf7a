#include "net/servicecall.h"

#include "net/basereq.h"
#include "net/replyfields.h"

#include <memory>

namespace {

ServiceReply readReply(bool ok, const QJsonDocument &document, const BaseReq &request)
{
    ServiceReply result;
    if (!ok) {
        if (!request.certificateError().isEmpty()) {
            result.outcome = ServiceReply::Outcome::CertificateRefused;
            result.message = request.certificateError();
        } else if (request.isTooLarge()) {
            result.outcome = ServiceReply::Outcome::Refused;
            result.message = QStringLiteral("服务端返回的数据过大，请缩小搜索范围");
        }
        return result;
    }
    result.object = document.object();
    result.outcome = reply::isSuccess(result.object) ? ServiceReply::Outcome::Success
                                                     : ServiceReply::Outcome::Refused;
    result.message = reply::text(result.object, QStringLiteral("message"));
    result.msg = reply::text(result.object, QStringLiteral("msg"));
    return result;
}

} // namespace

void callService(QObject *owner, const QString &action, const QByteArray &body,
                 ServiceHandler handler)
{
    auto *request = new BaseReq(owner);
    request->sendRequest(
        action, body,
        [request, handler = std::move(handler)](bool ok, const QJsonDocument &document) {
            const ServiceReply result = readReply(ok, document, *request);
            request->deleteLater();
            handler(result);
        });
}

LatestCall::LatestCall(QObject *owner) : QObject(owner)
{
}

void LatestCall::start(const QString &action, const QByteArray &body, ServiceHandler handler,
                       const ReplyReader &reader)
{
    cancel();
    auto *request = new BaseReq(this);
    request_ = request;
    const auto made = reader ? std::make_shared<std::any>() : nullptr;
    if (made) {
        request->setReading([reader, made](const QJsonDocument &document) {
            if (reply::isSuccess(document.object()))
                *made = reader(document.object());
        });
    }
    const auto answer = [this, request, made,
                         handler = std::move(handler)](bool ok, const QJsonDocument &document) {
        request->deleteLater();
        if (request_ != request)
            return;
        request_.clear();
        ServiceReply result = readReply(ok, document, *request);
        if (made && result.isSuccess()) {
            result.made = std::move(*made);
            if (!result.made.has_value())
                result = {}; // there was no memory for it
        }
        handler(result);
    };
    request->sendRequest(action, body, answer);
}

void LatestCall::cancel()
{
    BaseReq *request = request_;
    request_.clear();
    if (request)
        request->abortRequest();
}
