#include "net/basereq.h"

#include "app/context/accountcontext.h"
#include "app/context/logging.h"
#include "net/imagerequest.h"
#include "net/replybody.h"
#include "net/singlepost.h"
#include "net/tlssettings.h"
#include "pictures/picturebounds.h"
#include "tasks/background.h"
#include "tasks/task.h"

#include <QDebug>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QSslSocket>
#include <QUrl>

namespace {

/// Larger replies, such as a list of thousands of orders, would hold the interface up.
constexpr int parsedAtOnceBytes = 256 * 1024;

QByteArray withSessionFields(const QByteArray &body)
{
    return body + "&token=" + AccountContext::apiToken.toUtf8() +
           "&version=" + AccountContext::appVersion.toUtf8() +
           "&architecture=" + AccountContext::architecture.toUtf8() +
           "&uid=" + AccountContext::uid.toUtf8() + "&device=windows";
}

/// The beginning of \a body without what nobody is to read in a log.
QByteArray loggable(const QByteArray &body)
{
    constexpr int mostBytes = 4096;
    QList<QByteArray> fields = body.left(mostBytes).split('&');
    for (QByteArray &field : fields) {
        for (const char *secret : {"password=", "token="}) {
            if (field.startsWith(secret))
                field = QByteArray(secret) + "***";
        }
    }
    return fields.join('&');
}

QString serviceUrl(const QString &action)
{
    const QString group = action == QLatin1String("&m=Version&a=check_update")
                              ? QStringLiteral("g=publicapi")
                              : AccountContext::groupParam;
    return AccountContext::indexUrl + group + action;
}

QString mimeOfContent(const QByteArray &image)
{
    if (image.startsWith("\377\330\377"))
        return QStringLiteral("image/jpeg");
    if (image.startsWith("\x89PNG\r\n\x1a\n"))
        return QStringLiteral("image/png");
    if (image.startsWith("GIF87a") || image.startsWith("GIF89a"))
        return QStringLiteral("image/gif");
    if (image.startsWith("RIFF") && image.contains("WEBP"))
        return QStringLiteral("image/webp");
    if (image.startsWith("BM"))
        return QStringLiteral("image/bmp");
    return {};
}

QString mimeOfSuffix(const QString &url)
{
    const QString suffix = QFileInfo(QUrl(url).path()).suffix().toLower();
    return QStringLiteral("image/") +
           (suffix == QLatin1String("jpg") ? QStringLiteral("jpeg") : suffix);
}

} // namespace

BaseReq::BaseReq(QObject *parent) : QObject(parent)
{
    if (!QSslSocket::supportsSsl())
        qDebug() << "需要的SSL版本:" << QSslSocket::sslLibraryVersionString();
    manager_ = new QNetworkAccessManager(this);
    applyTlsSettings(&request_);
    request_.setHeader(QNetworkRequest::ContentTypeHeader,
                       QStringLiteral("application/x-www-form-urlencoded"));
}

BaseReq::~BaseReq() = default;

void BaseReq::sendRequest(const QString &action, const QByteArray &body, ServiceCallback callback)
{
    callback_ = std::move(callback);
    const QByteArray fullBody = withSessionFields(body);
    const QString url = serviceUrl(action);
    qDebug() << "url: " << url;
    qDebug() << "paras: " << loggable(fullBody) << fullBody.size();
    request_.setUrl(QUrl(url));
    watch(postOnce(manager_, request_, fullBody));
    body_ = new ReplyBody(reply_, mostReplyBytes_);
    connect(reply_, &QNetworkReply::finished, this, [this] { serviceRequestFinished(reply_); });
}

void BaseReq::sendGetRequest(const QString &url, ServiceCallback callback)
{
    callback_ = std::move(callback);
    qDebug() << "url: " << url;
    QNetworkRequest request;
    applyTlsSettings(&request);
    request.setUrl(QUrl(url));
    watch(manager_->get(request));
    body_ = new ReplyBody(reply_, mostReplyBytes_);
    connect(reply_, &QNetworkReply::finished, this, [this] { serviceRequestFinished(reply_); });
}

void BaseReq::downloadImage(const QString &url, ImageBytesCallback callback)
{
    imageCallback_ = std::move(callback);
    if (!isImageAddress(QUrl(url))) {
        QMetaObject::invokeMethod(
            this, [this] { handOverImage({}, QStringLiteral("不是网络地址")); },
            Qt::QueuedConnection);
        return;
    }
    watch(getImage(manager_, QNetworkRequest(QUrl(url))));
    body_ = new ReplyBody(reply_, picturebounds::fetchedBytes);
    connect(reply_, &QNetworkReply::finished, this, [this] { imageDownloadFinished(reply_); });
}

void BaseReq::downloadImageAsDataUrl(const QString &url, ImageCallback callback)
{
    if (!callback) {
        downloadImage(url, {});
        return;
    }
    downloadImage(
        url, [url, callback = std::move(callback)](const QByteArray &image, const QString &error) {
            const bool ok = error.isEmpty();
            callback(ok, ok ? imageDataUrl(image, url) : QString(), error);
        });
}

void BaseReq::watch(QNetworkReply *reply)
{
    requestDone_ = 0;
    certificateError_.clear();
    isTooLarge_ = false;
    reply_ = reply;
    connect(reply, &QNetworkReply::sslErrors, this, [](const QList<QSslError> &errors) {
        for (const QSslError &error : errors)
            qCWarning(lcTessavo) << "certificate:" << error.errorString();
    });
}

void BaseReq::noteCertificateError(QNetworkReply *reply)
{
    if (reply->error() == QNetworkReply::SslHandshakeFailedError)
        certificateError_ = reply->errorString();
}

/// The reply is still at work on its own end, which the callback may turn into ours.
void BaseReq::release(QNetworkReply *reply)
{
    reply->setParent(nullptr);
    reply->deleteLater();
    requestDone_ = 1;
}

void BaseReq::serviceRequestFinished(QNetworkReply *reply)
{
    if (!reply)
        return; // a reply that a later request on this object has replaced
    reply_.clear();
    const bool answered = reply->error() == QNetworkReply::NoError;
    const QByteArray body = answered ? body_->take() : QByteArray();
    isTooLarge_ = body_->isTooLarge();
    noteCertificateError(reply);
    release(reply);
    // Last in each way: the callback may delete this object.
    const auto handOver = [this](const QJsonDocument &document) {
        callback_(document.isObject(), document);
    };
    if (body.isEmpty() || (!reading_ && body.size() <= parsedAtOnceBytes)) {
        handOver(QJsonDocument::fromJson(body));
        return;
    }
    onProcessor(
        this,
        [body, reading = reading_] {
            QJsonDocument document; // null where there is no memory for it
            problemOf([&] {
                document = QJsonDocument::fromJson(body);
                if (reading && document.isObject())
                    reading(document);
            });
            return document;
        },
        handOver);
}

void BaseReq::imageDownloadFinished(QNetworkReply *reply)
{
    if (!reply)
        return;
    reply_.clear();
    noteCertificateError(reply);
    release(reply);
    const QByteArray image = body_->take();
    if (body_->isTooLarge())
        handOverImage({}, QStringLiteral("图片过大"));
    else if (reply->error() != QNetworkReply::NoError)
        handOverImage({}, imageProblem(*reply));
    else
        handOverImage(image, image.isEmpty() ? QStringLiteral("没有内容") : QString());
}

void BaseReq::handOverImage(const QByteArray &image, const QString &problem)
{
    if (!imageCallback_)
        qDebug() << "警告：imageCallback 为空";
    else
        imageCallback_(image,
                       problem.isEmpty() ? QString() : QStringLiteral("图片下载失败:") + problem);
}

void BaseReq::abortRequest()
{
    if (!reply_)
        return; // answered already
    qDebug() << "abort1";
    Q_UNUSED(reply_->isRunning())
    qDebug() << "abort2";
    qDebug() << (reply_->isFinished() ? "true" : "false");
    reply_->abort();
    qDebug() << "abort3";
}

QString imageDataUrl(const QByteArray &image, const QString &url)
{
    QString mime = mimeOfContent(image);
    if (mime.isEmpty())
        mime = mimeOfSuffix(url);
    return QStringLiteral("data:%1;base64,%2").arg(mime, QString::fromLatin1(image.toBase64()));
}
