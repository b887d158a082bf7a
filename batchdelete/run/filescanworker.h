#pragma once

#include "batchdelete/rules/batchdeleterecords.h"

#include <QObject>

#include <atomic>

namespace platform {
struct FolderEntry;
}

/// Lists every file below a folder, however deep. Links are not followed: links to files are files,
/// links to folders are listed and kept, as is whatever cannot be deleted by its name. Lives on a
/// thread of its own, see FileScanThread; blocks it while the folder is being read.
class FileScanWorker : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Folders further down than this are left out; 0 means no limit.
    void setMaximumDepth(int depth) { maximumDepth_ = depth; }
    /// Makes ready for the next scan(), so that a cancel() that comes before it begins counts. From
    /// any thread, while no scan runs.
    void prepare();
    /// Ends the scan that runs or is about to. From any thread.
    void cancel() { cancelled_ = true; }

public slots:
    /// \a path is in Windows form. Ends with finished() in every case.
    void scan(const QString &path);

signals:
    /// On entering each folder, and for every hundred files.
    void progress(int count, const QString &folder);
    void finished(const FileScanResult &result);

private:
    FileScanResult result(const QString &path);
    bool walk(const QString &folderPath, int depth);
    bool take(const QString &folderPath, const platform::FolderEntry &entry);
    void keep(const QString &folderPath, const QString &name, const QString &reason);

    std::atomic<bool> cancelled_{false};
    int count_ = 0;
    int maximumDepth_ = 0;
    QString root_;
    QString failure_; ///< why the walk ended
    QVector<BatchDeleteFileInfo> files_;
};
