#include "net/singlepost.h"

#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <algorithm>
#include <cstring>

namespace {

/// Bytes that can be read once: what cannot be rewound cannot be sent again.
class SingleReading : public QIODevice
{
public:
    explicit SingleReading(const QByteArray &bytes) : bytes_(bytes)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }
    bool reset() override { return false; }
    bool atEnd() const override { return at_ == bytes_.size(); }
    qint64 bytesAvailable() const override { return bytes_.size() - at_; }

protected:
    qint64 readData(char *data, qint64 most) override
    {
        const auto count = int(std::min<qint64>(most, bytes_.size() - at_));
        if (count == 0)
            return -1;
        std::memcpy(data, bytes_.constData() + at_, size_t(count));
        at_ += count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const QByteArray bytes_;
    int at_ = 0;
};

} // namespace

QNetworkReply *postOnce(QNetworkAccessManager *manager, QNetworkRequest request,
                        const QByteArray &body)
{
    // The server may be about to end a connection that was idle, and one attempt is all there is.
    manager->clearConnectionCache();
    request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());
    // Otherwise the body is read into memory first, from where it can be sent as often as one
    // likes.
    request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    auto *device = new SingleReading(body);
    QNetworkReply *reply = manager->post(request, device);
    device->setParent(reply);
    return reply;
}
