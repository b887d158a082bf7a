#include "net/replybody.h"

#include <QNetworkReply>

#include <algorithm>
#include <utility>

namespace {

constexpr qint64 pieceBytes = qint64(64) * 1024;

} // namespace

ReplyBody::ReplyBody(QNetworkReply *reply, qint64 mostBytes)
    : QObject(reply), reply_(reply), mostBytes_(mostBytes)
{
    reply->setReadBufferSize(pieceBytes);
    connect(reply, &QNetworkReply::readyRead, this, &ReplyBody::readOn);
    connect(reply, &QNetworkReply::metaDataChanged, this, &ReplyBody::readOn);
}

void ReplyBody::readOn()
{
    if (isTooLarge_)
        return;
    const qint64 announced = reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    bytes_ += reply_->read(std::min(reply_->bytesAvailable(), mostBytes_ + 1 - bytes_.size()));
    if (std::max<qint64>(announced, bytes_.size()) <= mostBytes_)
        return;
    isTooLarge_ = true;
    bytes_.clear();
    // Not from within the reply's own signal: whoever hears of its end may delete its owner.
    QMetaObject::invokeMethod(reply_, &QNetworkReply::abort, Qt::QueuedConnection);
}

QByteArray ReplyBody::take()
{
    if (reply_->isOpen())
        readOn();
    return std::exchange(bytes_, {});
}
