#pragma once

#include "fileimport/photorecords.h"

#include <QObject>
#include <QRunnable>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

/// Whether \a wirePath can be the path of a photo to delete: absolute, without "..", and neither a
/// root nor written as a folder. Looks at the text alone.
bool namesOneFile(const QString &wirePath);

/// Removes one photo and its smaller variants from disk, once the service has agreed. Runs on a
/// pool thread, which deletes it afterwards, and tells its result by one signal; connect to it
/// queued. A file that carries a read-only mark stays.
class DeleteFileRunnable : public QObject, public QRunnable
{
    Q_OBJECT

public:
    /// Removes a file, given as this machine writes paths; on failure false and the system's text.
    using RemoveFunction = std::function<bool(const QString &path, QString *error)>;
    /// Shared by the tasks of one deletion; those that find it true do nothing.
    using StopFlag = std::shared_ptr<std::atomic<bool>>;

    DeleteFileRunnable(PhotoEntry photo, StopFlag stopped, RemoveFunction remove = removeFile);
    ~DeleteFileRunnable() override;

    void run() override;

    static bool removeFile(const QString &path, QString *error);

signals:
    void deleteFinished(const DeleteFileResult &result);

private:
    DeleteFileResult processSafely() const;
    DeleteFileResult process() const;
    /// The text of what went wrong; empty when the file is gone.
    QString removeOne(const QString &path, const QString &name, const QString &failedText) const;

    PhotoEntry photo_;
    StopFlag stopped_;
    RemoveFunction remove_;
    /// Held while the task is made and while it runs: hands it from thread to thread visibly, which
    /// the pool's own lock does not for tools that look for races.
    std::mutex handOver_;
};
