#pragma once

#include "photoimport/rules/photoimportrecords.h"

#include <QMutex>
#include <QString>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <functional>

class DecodedSources;

/// What a worker does with a photo. Each takes a source and a target as this machine writes paths
/// and returns whether the target is there, with the reason when it is not, and what is known of it
/// when it is; they may throw.
struct PhotoOperations
{
    using Copy = std::function<bool(const QString &source, const QString &target,
                                    JobFailure *failure, WrittenOriginal *written)>;
    using Compress = std::function<bool(const QString &source, const QString &target, int longSide,
                                        JobFailure *failure)>;

    Copy copyOriginal;
    Copy copyVideo;
    Compress compress;

    /// The real ones; \a shared must outlive the workers.
    static PhotoOperations standard(DecodedSources *shared);
};

/// One thread of the import pool: waits for one job at a time, does it and reports. The pool calls
/// give() and stop() from its own thread; the flags may be read from any.
class tfimportworker : public QThread
{
    Q_OBJECT

public:
    tfimportworker(int workerId, PhotoOperations operations, QObject *parent);
    /// Stops, and waits for a job in progress.
    ~tfimportworker() override;

    /// Hands \a job over. Only to a worker that takesJobs() and isIdle().
    void give(const PhotoJob &job);
    /// Asks the thread to end; a job in progress is finished and reported first.
    void stop();

    bool isIdle() const { return idle_; }
    /// Whether the thread runs and is to go on running.
    bool takesJobs() const { return isRunning() && !stopRequested_; }

    /// Copies a video as it is, replacing an earlier output.
    static bool copyFile(const QString &source, const QString &target,
                         JobFailure *failure = nullptr, WrittenOriginal *written = nullptr);

signals:
    /// Before the report of a job that failed, when more is known than its text says.
    void failureExplained(int taskId, int photoIndex, const JobFailure &failure);
    void photoImported(int taskId, const QString &fileName, int photoIndex, bool success,
                       const QString &errorMsg);
    void workerFinished(int workerId);

protected:
    void run() override;

private:
    bool takeJob(PhotoJob *job);
    QString process(const PhotoJob &job);
    QString write(const PhotoJob &job, JobFailure *failure, WrittenOriginal *written) const;

    static void record(const PhotoJob &job, const WrittenOriginal &written, const QString &problem);
    static QString targetOf(const PhotoJob &job);

    const int workerId_;
    const PhotoOperations operations_;
    QMutex mutex_; ///< guards job_ and the hand-over
    QWaitCondition wake_;
    PhotoJob job_;
    std::atomic<bool> stopRequested_{false};
    std::atomic<bool> hasJob_{false};
    std::atomic<bool> idle_{true};
};
