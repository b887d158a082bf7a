#pragma once

#include "fileimport/photorecords.h"
#include "tasks/stopflag.h"
#include "tasks/task.h"

#include <QObject>
#include <QString>

#include <functional>

/// Whether \a wirePath can be the path of a photo to delete: absolute, without "..", and neither a
/// root nor written as a folder. Looks at the text alone.
bool namesOneFile(const QString &wirePath);

/// Removes one photo and its smaller variants from disk, once the service has agreed. Runs on a
/// pool thread and tells its result by one signal; connect to it queued. A file that carries a
/// read-only mark stays.
class DeleteFileRunnable : public QObject, public Task
{
    Q_OBJECT

public:
    /// Removes a file, given as this machine writes paths; on failure false and the system's text.
    using RemoveFunction = std::function<bool(const QString &path, QString *error)>;

    /// When \a stopped is raised before it begins, it does nothing.
    DeleteFileRunnable(PhotoEntry photo, StopFlag stopped, RemoveFunction remove = removeFile);
    ~DeleteFileRunnable() override;

    static bool removeFile(const QString &path, QString *error);

signals:
    void deleteFinished(const DeleteFileResult &result);

private:
    void perform() override;
    void failed(const QString &problem) override;
    DeleteFileResult process() const;
    /// The text of what went wrong; empty when the file is gone.
    QString removeOne(const QString &path, const QString &name, const QString &failedText) const;

    PhotoEntry photo_;
    StopFlag stopped_;
    RemoveFunction remove_;
};
