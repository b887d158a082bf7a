#pragma once

#include <QImage>
#include <QString>
#include <QStringList>
#include <QThread>

#include <condition_variable>
#include <mutex>

/// Reads thumbnails of pictures on disk, upright and scaled while decoding, one after the other.
/// Only what was asked for last is read: scrolling on drops what is out of sight. Starts with the
/// first request.
///
/// The interface thread owns it. Destroying it waits for the picture being read: where a share may
/// hang, stop() it and destroy it on finished().
class tfthumbnailthread : public QThread
{
    Q_OBJECT

public:
    explicit tfthumbnailthread(QObject *parent = nullptr);
    ~tfthumbnailthread() override;

    /// Replaces what is wanted. \a side: pixels of the square that a thumbnail fits into.
    void want(const QStringList &paths, int side);
    /// Ends after the picture being read; for good.
    void stop();

    /// The picture at \a path, upright, no side larger than \a side. Null when it cannot be shown:
    /// it is none, it is damaged, or reading it would take too much memory. Blocks.
    static QImage thumbnailOf(const QString &path, int side);

signals:
    /// \a thumbnail is null when there is none to show.
    void thumbnailReady(const QString &path, const QImage &thumbnail);

protected:
    void run() override;

private:
    std::mutex mutex_; ///< guards all below
    std::condition_variable changed_;
    QStringList wanted_;
    int side_ = 0;
    bool stopped_ = false;
};
