#pragma once

#include "fileimport/imported/deletefileresult.h"
#include "fileimport/imported/deletefilerunnable.h"
#include "fileimport/imported/originalrequests.h"
#include "net/servicecall.h"
#include "pending/photodeletionrecording.h"
#include "tasks/latest.h"
#include "tasks/workerpool.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

/// How a deletion ended that the service had agreed to.
struct OriginalDeletionSummary
{
    int succeeded = 0;
    int failed = 0;
    /// What is left to be deleted by hand, and why: in the order of the entries, however the
    /// threads got on.
    QVector<DeleteFileResult> left;
};
Q_DECLARE_METATYPE(OriginalDeletionSummary)

/// The order of steps of deleting photos: the ledger first, then the service, and the disk only
/// when it agreed, up to four photos at once. One deletion at a time.
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
    /// As long as the service has not answered: nothing is touched on disk any more. What it was
    /// asked already it may do all the same, see unanswered().
    void cancel();
    /// For the end of the window. What has not begun is left; the answer to a request that is out
    /// is waited for, but not for ever.
    void stop();
    bool isBusy() const { return phase_ != Phase::Idle; }

    /// How long stop() waits for the answer, ms.
    void setPatience(int ms) { answerTimer_.setInterval(ms); }

signals:
    /// The service did not agree, or did not answer; nothing was touched on disk.
    void submitFailed(const ServiceReply &reply);
    /// Nobody knows whether the service has forgotten the photos; their files are untouched.
    void unanswered();
    void progressed(int done, int total);
    void finished(const OriginalDeletionSummary &summary);
    /// Not busy any more, for whatever reason; after the other signals.
    void ended();

private:
    enum class Phase { Idle, Planning, Submitted, Removing };

    void record(const originalrequests::OrderMap &order, const QVector<PhotoEntry> &entries,
                const PhotoPlace &place);
    void submit(const originalrequests::OrderMap &order, const QVector<PhotoEntry> &entries,
                const PhotoPlace &place);
    void onReply(const ServiceReply &reply, const QVector<PhotoEntry> &entries,
                 const PhotoPlace &place);
    void onAgreed(const QVector<PhotoEntry> &entries, const PhotoPlace &place);
    void onDeleteFinished(int position, const DeleteFileResult &result);
    void finish();
    void giveUpAnswer();
    void end();

    DeleteFileRunnable::RemoveFunction remove_;
    StopFlag stopped_;
    LatestCall call_;
    WorkerPool pool_;
    Phase phase_ = Phase::Idle;
    Latest planning_;
    PhotoDeletionRecording recording_;
    QTimer answerTimer_;
    int total_ = 0;
    OriginalDeletionSummary summary_;
    QMap<int, DeleteFileResult> left_; ///< by the entry's position
    QString resultText_;
};
