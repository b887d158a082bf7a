#include "photoimport/imported/tfthumbnailthread.h"

#include "app/context/logging.h"
#include "pictures/picturereader.h"

#include <algorithm>

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
    PictureReader reader(path, picturebounds::shown);
    reader.acceptIncomplete();
    const QSize size = reader.size();
    // A square holds a picture whichever way it is turned afterwards.
    if (std::max(size.width(), size.height()) > side)
        reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return inScreenColours(reader.readUpright());
}
