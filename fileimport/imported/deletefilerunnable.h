#pragma once

#include "fileimport/imported/deletefileresult.h"
#include "fileimport/imported/photoplace.h"
#include "tasks/stopflag.h"
#include "tasks/task.h"

#include <QObject>
#include <QString>

#include <functional>

/// Removes one photo and its smaller variants from disk, once the service has agreed. Runs on a
/// pool thread and tells its result by one signal; connect to it queued. What lies outside of the
/// order's place stays, and so does a file that carries a read-only mark.
class DeleteFileRunnable : public QObject, public Task
{
    Q_OBJECT

public:
    /// Removes a file, given as this machine writes paths; on failure false and the system's text.
    using RemoveFunction = std::function<bool(const QString &path, QString *error)>;

    /// When \a stopped is raised before it begins, it does nothing.
    DeleteFileRunnable(PhotoEntry photo, PhotoPlace place, StopFlag stopped,
                       RemoveFunction remove = removeFile);
    ~DeleteFileRunnable() override;

    static bool removeFile(const QString &path, QString *error);

signals:
    void deleteFinished(const DeleteFileResult &result);

private:
    void perform() override;
    void failed(const QString &problem) override;
    DeleteFileResult process() const;
    bool isGone() const;
    /// Whether the path, in Windows form or with slashes, leads to a file of the order's place.
    bool leadsToPhoto(const QString &path) const;
    /// The text of what went wrong; empty when the file is gone.
    QString removeOne(const QString &path, const QString &name, const QString &failedText) const;

    PhotoEntry photo_;
    PhotoPlace place_;
    StopFlag stopped_;
    RemoveFunction remove_;
};
