#pragma once

#include "pictures/picturebounds.h"

#include <QHash>
#include <QObject>
#include <QPixmap>
#include <QSize>
#include <QString>
#include <QVector>

class QNetworkAccessManager;
class QNetworkReply;
class QTimer;
class ReplyBody;

/// What the images of a grid may cost. One that asks for more counts as not loadable.
struct ThumbnailLimits
{
    qint64 bodyBytes = picturebounds::fetchedBytes;
    int timeMs = 30000; ///< from the request to the last byte
    int graceMs = 3000; ///< left to a fetch whose list has gone
    int fetchesAtOnce = 6;
    int picturesHeld = 400; ///< by cells, as long as the pages around the screen show fewer
};

/// Fetches and decodes the images of the grid's cells, one decode at a time. Lives on a thread of
/// its own, where it is deleted, too; slots and signals are queued. The image asked for last comes
/// first: it belongs to what is on the screen now. Until everything is cancelled an image is
/// fetched once, however often it is asked for: the worker keeps what came, in few bytes.
///
/// Every request is answered by one photoLoaded() or photoLoadFailed(), unless it is cancelled:
/// nothing of a cancelled request comes after requestsCancelled().
class ThumbnailLoadWorker : public QObject
{
    Q_OBJECT

public:
    /// Images are scaled to fit into \a photoSize pixels.
    explicit ThumbnailLoadWorker(const QSize &photoSize, const ThumbnailLimits &limits = {});
    ~ThumbnailLoadWorker() override;

public slots:
    /// \a name is the remote address of the image; without one \a icon, a file, is shown.
    void loadPhoto(const QString &name, const QString &icon, int index);
    void cancelAllRequests();

signals:
    void photoLoaded(const QPixmap &pixmap, const QString &name, int index);
    void photoLoadFailed(const QString &name, int index);
    /// What came before this belongs to cancelled requests.
    void requestsCancelled();

private:
    struct Load
    {
        QString name;
        int index = -1;
    };

    void tell(const QImage &image, const Load &load);
    void loadIcon(const QString &icon, const Load &load);
    void startNext();
    void fetch(const Load &load);
    void onFinished(QNetworkReply *reply, ReplyBody *body, const Load &load);

    const QSize photoSize_;
    const ThumbnailLimits limits_;
    QNetworkAccessManager *manager_ = nullptr; ///< made on the worker's own thread
    QVector<Load> waiting_;
    /// With what limits their time; cancelled ones, too, until they have finished.
    QHash<QNetworkReply *, QTimer *> active_;
    QHash<QString, QPixmap> icons_;
    QHash<QString, QByteArray> kept_; ///< thumbnails that came, by address
};
