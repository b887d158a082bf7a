#include "photoimport/tfthumbnailthread.h"

#include "app/context/logging.h"

#include <QImageReader>

#include <algorithm>

namespace {

/// Pixels of the largest pictures shown. JPEGs are reduced while they are decoded; the decoder
/// holds the others whole.
constexpr qint64 mostJpegPixels = 120000000;
constexpr qint64 mostOtherPixels = 60000000;

} // namespace

tfthumbnailthread::tfthumbnailthread(QObject *parent) : QThread(parent)
{
    setObjectName(QStringLiteral("photo thumbnails"));
}

tfthumbnailthread::~tfthumbnailthread()
{
    stop();
    wait();
}

void tfthumbnailthread::want(const QStringList &paths, int side)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    wanted_ = paths;
    side_ = side;
    if (stopped_ || wanted_.isEmpty())
        return;
    changed_.notify_one();
    if (!isRunning())
        start(QThread::LowPriority);
}

void tfthumbnailthread::stop()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    stopped_ = true;
    wanted_.clear();
    changed_.notify_one();
}

void tfthumbnailthread::run()
{
    for (;;) {
        QString path;
        int side = 0;
        {
            std::unique_lock<std::mutex> lock(mutex_);
            changed_.wait(lock, [this] { return !wanted_.isEmpty() || stopped_; });
            if (stopped_)
                return;
            path = wanted_.takeFirst();
            side = side_;
        }
        QImage thumbnail;
        try {
            thumbnail = thumbnailOf(path, side);
        } catch (const std::exception &error) {
            qCWarning(lcTessavo) << "no thumbnail of" << path << error.what();
        }
        emit thumbnailReady(path, thumbnail);
    }
}

QImage tfthumbnailthread::thumbnailOf(const QString &path, int side)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isEmpty())
        return {};
    const bool reduces = reader.format() == "jpeg" || reader.format() == "jpg";
    const qint64 pixels = qint64(size.width()) * size.height();
    if (pixels > (reduces ? mostJpegPixels : mostOtherPixels))
        return {};
    // A square holds a picture whichever way it is turned afterwards.
    if (std::max(size.width(), size.height()) > side)
        reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return reader.read();
}
