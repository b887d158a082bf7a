#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

class QNetworkAccessManager;
class ReplyBody;

/// One request to the studio-management service, or one image fetch: the transport. Tools call the
/// service through net/servicecall.h, which tells apart how a request ended.
///
/// Serves one request at a time; create one per call, with the calling window as parent: when the
/// parent dies the call dies with it and its callback never runs. Calls return at once, callbacks
/// run later on the thread that created the object. There are no time-outs and no retries.
class BaseReq : public QObject
{
    Q_OBJECT

public:
    /// \a ok is false, and the document null, when there was no usable answer: network or TLS
    /// failure, an HTTP error, or a body that is no JSON; for a JSON array \a ok is false as well.
    using ServiceCallback = std::function<void(bool ok, const QJsonDocument &document)>;
    /// On failure \a dataUrl is empty and \a error says why.
    using ImageCallback =
        std::function<void(bool ok, const QString &dataUrl, const QString &error)>;

    /// On failure \a error says why; otherwise it is empty.
    using ImageBytesCallback = std::function<void(const QByteArray &image, const QString &error)>;

    explicit BaseReq(QObject *parent = nullptr);
    ~BaseReq() override;

    /// Posts \a body, with the fixed session fields appended, to the service's entry point.
    /// \a action is the module-and-action part of the query, such as "&m=public&a=dologin".
    void sendRequest(const QString &action, const QByteArray &body, ServiceCallback callback);

    /// The same reply handling for a plain GET of a full address.
    void sendGetRequest(const QString &url, ServiceCallback callback);

    /// Fetches an image. Refused are what does not lie on the network, and bodies of more bytes
    /// than a picture has. Whether it is one is for the reader of pictures to say.
    void downloadImage(const QString &url, ImageBytesCallback callback);

    /// The same, handed over as a data URL.
    void downloadImageAsDataUrl(const QString &url, ImageCallback callback);

    /// Ends the request in flight; its callback then runs with ok = false. Nothing happens once the
    /// answer is there.
    void abortRequest();

    /// Why the last request was refused by us: the server's certificate is not trusted. Empty when
    /// that was not the reason.
    const QString &certificateError() const { return certificateError_; }

    /// Beyond so many bytes, unpacked, a reply of the service is given up; before sending.
    void setMostReplyBytes(qint64 count) { mostReplyBytes_ = count; }

    /// Whether the last answer was given up because of its size.
    bool isTooLarge() const { return isTooLarge_; }

    /// Has \a reading look at the JSON object that the next reply holds, on a thread, right after
    /// it was parsed there and before the callback; before sending. What it throws is logged and
    /// dropped.
    void setReading(std::function<void(const QJsonDocument &)> reading)
    {
        reading_ = std::move(reading);
    }

private slots:
    void serviceRequestFinished(QNetworkReply *reply);
    void imageDownloadFinished(QNetworkReply *reply);

private:
    /// No list of orders is larger; whatever goes on beyond this would end the program's memory.
    static constexpr qint64 largestReplyBytes = qint64(256) * 1024 * 1024;

    void watch(QNetworkReply *reply);
    void noteCertificateError(QNetworkReply *reply);
    void release(QNetworkReply *reply);
    void handOverImage(const QByteArray &image, const QString &problem);

    int requestDone_ = 1; ///< 0 while a request is in flight
    QPointer<QNetworkReply> reply_;
    QNetworkRequest request_;
    QNetworkAccessManager *manager_;
    ServiceCallback callback_;
    std::function<void(const QJsonDocument &)> reading_;
    ImageBytesCallback imageCallback_;
    QString certificateError_;
    QPointer<ReplyBody> body_; ///< of the reply
    qint64 mostReplyBytes_ = largestReplyBytes;
    bool isTooLarge_ = false;
};

/// \a image wrapped as a data URL. The kind is told by the first bytes, otherwise by the suffix of
/// \a url.
QString imageDataUrl(const QByteArray &image, const QString &url);
