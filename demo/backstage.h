#pragma once

#include "demo/answers.h"
#include "demo/misbehaviour.h"
#include "demo/requestlog.h"
#include "demo/share.h"
#include "demo/studio.h"
#include "demo/wirepaths.h"

#include <QByteArray>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <condition_variable>
#include <functional>
#include <mutex>

namespace demo {

// Everything behind the counter: the studio, the answers, the record of requests and the
// misbehaviour, brought together under one lock. Knows nothing of HTTP. All members may be called
// from any thread; handle() blocks while a request is delayed or held.
class Backstage
{
public:
    struct Reply
    {
        // HeadOnly and Nothing end the connection early; Huge and Endless say how the body goes on
        // after its first bytes.
        enum class Form { Whole, HeadOnly, Nothing, Huge, Endless };

        Form form = Form::Whole;
        int status = 200;
        QByteArray contentType = "application/json; charset=utf-8";
        QByteArray body;
        QByteArray location; // of a redirect
        QString kind;        // misbehaviour that was met, for the log line
    };

    // orders: how many to begin with, the notable ones among them.
    Backstage(const QString &dataFolder, const QString &pathPrefix, int orders);

    // Makes the folders on disk. Returns an empty text or what went wrong.
    QString open();
    void setServiceUrl(const QString &url);
    // Lets every waiting request go and keeps later ones from waiting.
    void close();

    Reply handle(const QByteArray &query, const QByteArray &contentType, const QByteArray &body);

    // path: of a photo, such as "/photos/17.jpg".
    Reply picture(const QString &path, const QByteArray &userAgent);
    // What draw makes; where that is nothing, there is no such picture.
    Reply picture(const QString &path, const QByteArray &userAgent,
                  const std::function<QByteArray()> &draw);
    // Waits a moment; false when the service is closing.
    bool pause();

    QJsonArray requests(const QString &action) const;
    void clearRequests();
    QString misbehave(const QJsonObject &told);
    void release();
    QString reset();
    QJsonObject state() const;
    // {"add": N, "shopid": …}, {"id": …, "fields": {…}} or {"id": …, "photos": N}; id may
    // be replaced by order_photo_id.
    QString changeOrders(const QJsonObject &change);

private:
    void fill();
    static bool breakOff(const Misbehaviour &misbehaviour, Reply *reply);
    static bool spoilPicture(const Misbehaviour &misbehaviour, const QString &path, Reply *reply);
    void wait(std::unique_lock<std::mutex> &lock, const Misbehaviour &misbehaviour);

    const Share share_;
    const WirePaths paths_;
    const int orderCount_;

    mutable std::mutex mutex_; // guards everything below
    std::condition_variable wake_;
    Studio studio_;
    Answers answers_;
    RequestLog log_;
    Misbehaviours misbehaviours_;
    QHash<QString, QJsonObject> lastAnswers_; // by action
    int nextSerial_ = 0;
    int held_ = 0;
    int releases_ = 0;
    bool closed_ = false;
};

} // namespace demo
