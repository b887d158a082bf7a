#pragma once

#include "fileimport/imported/deletefilerunnable.h"
#include "fileimport/imported/originalrequests.h"
#include "fileimport/imported/photorecords.h"
#include "net/servicecall.h"
#include "tasks/latest.h"
#include "tasks/workerpool.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

/// How a deletion ended.
struct OriginalDeletionSummary
{
    int succeeded = 0;
    int failed = 0;
    QStringList messages; ///< what is left to be deleted by hand, and why
};
Q_DECLARE_METATYPE(OriginalDeletionSummary)

/// The order of steps of deleting photos: the service first, and the disk only when it agreed, up
/// to four photos at once. One deletion at a time.
///
/// Lives on the interface thread and never blocks. Destroying it waits up to 5 seconds, and then
/// for the file being removed: stop() it and release it on ended() instead.
class OriginalDeletion : public QObject
{
    Q_OBJECT

public:
    explicit OriginalDeletion(
        DeleteFileRunnable::RemoveFunction remove = DeleteFileRunnable::removeFile,
        QObject *parent = nullptr);
    ~OriginalDeletion() override;

    /// False, and nothing happens, while one is under way. On disk only what lies in the order's
    /// place among the \a listed ones is touched; the service is asked to forget all \a entries.
    bool start(const originalrequests::OrderMap &order, const QVector<PhotoEntry> &entries,
               const QVector<ImportOrder> &listed = {});
    /// What has not begun is left; the request is abandoned.
    void stop();
    bool isBusy() const { return busy_; }

signals:
    /// The service did not agree; nothing was touched.
    void submitFailed(const ServiceReply &reply);
    void progressed(int done, int total);
    void finished(const OriginalDeletionSummary &summary);
    /// Not busy any more, for whatever reason; after the other signals.
    void ended();

private:
    void submit(const originalrequests::OrderMap &order, const QVector<PhotoEntry> &entries,
                const PhotoPlace &place);
    void onAgreed(const QVector<PhotoEntry> &entries, const PhotoPlace &place);
    void onDeleteFinished(const DeleteFileResult &result);
    void finish();

    DeleteFileRunnable::RemoveFunction remove_;
    StopFlag stopped_;
    LatestCall call_;
    WorkerPool pool_;
    bool busy_ = false;
    Latest planning_;
    int total_ = 0;
    OriginalDeletionSummary summary_;
    QString resultText_;
};
