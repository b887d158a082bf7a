#include "thumbnails/thumbnailloadworker.h"

#include "net/imagerequest.h"
#include "net/replybody.h"
#include "pictures/picturereader.h"
#include "thumbnails/thumbnaildecoding.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>
#include <QUrl>

namespace {

const char cancelledProperty[] = "cancelled";

} // namespace

ThumbnailLoadWorker::ThumbnailLoadWorker(const QSize &photoSize, const ThumbnailLimits &limits)
    : photoSize_(photoSize), limits_(limits)
{
}

ThumbnailLoadWorker::~ThumbnailLoadWorker()
{
    // The replies end with the manager and would still tell.
    for (auto reply = active_.keyBegin(); reply != active_.keyEnd(); ++reply)
        (*reply)->disconnect(this);
}

void ThumbnailLoadWorker::loadPhoto(const QString &name, const QString &icon, int index)
{
    const Load load{name, index};
    if (name.isEmpty()) {
        loadIcon(icon, load);
        return;
    }
    if (!isImageAddress(QUrl(name))) {
        emit photoLoadFailed(name, index);
        return;
    }
    const auto known = kept_.constFind(name);
    if (known != kept_.cend()) {
        tell(decodeThumbnail(*known, photoSize_), load);
        return;
    }
    waiting_.append(load);
    startNext();
}

void ThumbnailLoadWorker::tell(const QImage &image, const Load &load)
{
    if (image.isNull())
        emit photoLoadFailed(load.name, load.index);
    else
        emit photoLoaded(QPixmap::fromImage(image), load.name, load.index);
}

void ThumbnailLoadWorker::loadIcon(const QString &icon, const Load &load)
{
    auto known = icons_.find(icon);
    if (known == icons_.end()) {
        const QImage image = PictureReader(icon, picturebounds::shown).read();
        known = icons_.insert(
            icon, image.isNull() ? QPixmap()
                                 : QPixmap::fromImage(image.scaled(photoSize_, Qt::KeepAspectRatio,
                                                                   Qt::SmoothTransformation)));
    }
    if (known->isNull())
        emit photoLoadFailed(load.name, load.index);
    else
        emit photoLoaded(*known, load.name, load.index);
}

void ThumbnailLoadWorker::startNext()
{
    while (!waiting_.isEmpty() && active_.size() < limits_.fetchesAtOnce)
        fetch(waiting_.takeLast());
}

void ThumbnailLoadWorker::fetch(const Load &load)
{
    if (!manager_)
        manager_ = new QNetworkAccessManager(this);
    QNetworkRequest request{QUrl(load.name)};
    request.setRawHeader("User-Agent", "Mozilla/5.0");
    QNetworkReply *reply = getImage(manager_, request);
    auto *timer = new QTimer(reply);
    active_.insert(reply, timer);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, reply, &QNetworkReply::abort);
    timer->start(limits_.timeMs);
    auto *body = new ReplyBody(reply, limits_.bodyBytes);
    connect(reply, &QNetworkReply::finished, this,
            [this, reply, body, load] { onFinished(reply, body, load); });
}

void ThumbnailLoadWorker::onFinished(QNetworkReply *reply, ReplyBody *body, const Load &load)
{
    active_.remove(reply);
    reply->deleteLater();
    startNext();
    if (reply->property(cancelledProperty).toBool())
        return;
    QImage image;
    if (reply->error() == QNetworkReply::NoError)
        image = decodeThumbnail(body->take(), photoSize_);
    if (!image.isNull())
        kept_.insert(load.name, packThumbnail(image));
    tell(image, load);
}

void ThumbnailLoadWorker::cancelAllRequests()
{
    waiting_.clear();
    kept_.clear();
    for (auto fetch = active_.cbegin(); fetch != active_.cend(); ++fetch) {
        if (fetch.key()->property(cancelledProperty).toBool())
            continue;
        fetch.key()->setProperty(cancelledProperty, true);
        // It may finish, so that its connection can be used again, but not keep others waiting.
        QTimer *timer = fetch.value();
        timer->start(qBound(0, timer->remainingTime(), limits_.graceMs));
    }
    emit requestsCancelled();
}
