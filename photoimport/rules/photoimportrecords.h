#pragma once

#include "files/proof.h"
#include "net/orderqueries.h"

#include <QByteArray>
#include <QImage>
#include <QMetaType>
#include <QString>
#include <QVector>

#include <memory>

/// What is imported.
enum class PhotoMode {
    Photos = 0,
    TrialVideos = 1,
    RetouchedVideos = 2,
    Unknown, ///< as retouched videos, but deleted as photos
};

/// One job of an import: one source file in one of the forms in which it is imported. Carried
/// through the pool unchanged. Any thread.
struct PhotoInfo
{
    QString fileName;     ///< name of the output; the source file's own unless it was renamed
    int enabled = 1;      ///< 0: reported as done at once, nothing is written
    QImage thumbnail;     ///< preview for the window; an image, since records cross threads
    QString targetSize;   ///< long side of a size variant in pixels, as text; otherwise empty
    QString kind;         ///< see photorules; names the sub-folder
    QString sourcePath;   ///< absolute, as this machine writes it
    QString importFolder; ///< the order's folder, in Windows form

    // For whoever shows the photo; the pool only carries them along.
    int sourceIndex = 0;  ///< position of the source file among those chosen for the order
    int state = 0;        ///< of the import
    int registration = 0; ///< state of telling the service
    int attempts = 0;
};
Q_DECLARE_METATYPE(PhotoInfo)

/// One order of the photo import: what the service says of it, and the jobs to be done for it.
struct OrderInfo : orderqueries::OrderInfo
{
    QString importPublicPath; ///< public import root of the branch, in Windows form; may be empty
    QString importPath;       ///< the order's folder, in Windows form; empty until it is known
    QVector<PhotoInfo> photos;
    QString openypml; ///< flags of the search reply, kept for whoever asks
    QString delyp;
};
Q_DECLARE_METATYPE(OrderInfo)

/// A piece of an order in the pool's queue or among its active tasks: the photos of the order from
/// the start index on, up to where the next piece begins. The pieces of one order share its list,
/// so that splitting an order of thousands of photos copies none of them.
struct ImportTask
{
    std::shared_ptr<const OrderInfo> order;
    bool completed = false; ///< every photo of the order has been reported
    bool flag = false;      ///< carried along
    int taskId = 0;
    int startIndex = 0;  ///< photo index of the first photo of this piece
    int total = 0;       ///< photos of the whole order
    int firstTaskId = 0; ///< id under which the order was queued: what its pieces have in common
};

/// Why a job failed, beyond the text that its kind fails with.
struct JobFailure
{
    QString reason;        ///< in words for the user; empty when nothing is known
    bool hopeless = false; ///< no such form can be made of a file of this sort: not a fault, and
                           ///< nothing to try again
};
Q_DECLARE_METATYPE(JobFailure)

/// What is known of an original or a video that was written.
struct WrittenOriginal
{
    bool isUpright = false; ///< turned and encoded anew, instead of copied
    Proof proof = Proof::None;
    // See ContentHash; empty when nothing was read back.
    QByteArray sourceHash;
    QByteArray targetHash;
    qint64 bytes = 0; ///< of what was written
};

/// What a worker is given to do.
struct PhotoJob
{
    PhotoInfo photo;
    int taskId = 0;
    int photoIndex = 0;
    QString targetFolder; ///< where the output goes, in Windows form
    qint64 copy = 0;      ///< how the ledger knows it; 0 when it does not
};
