#pragma once

#include "batchdelete/run/filescanworker.h"

#include <QObject>

class QThread;
class QTimer;

/// One scan of one folder on a thread of its own. Lives on the interface thread and never makes it
/// wait: destroying it abandons the scan, of which nothing more is heard, and the thread ends when
/// the disk lets it. It is never terminated; the process waits for it.
class FileScanThread : public QObject
{
    Q_OBJECT

public:
    explicit FileScanThread(QObject *parent = nullptr);
    ~FileScanThread() override;

    /// Once per object. See FileScanWorker::scan().
    void scan(const QString &path);
    /// The scan then ends soon with a result that says so.
    void cancel() { worker_->cancel(); }

signals:
    void progress(int count, const QString &folder);
    void finished(const FileScanResult &result);
    /// To the worker.
    void scanRequested(const QString &path, QPrivateSignal);

private:
    QThread *thread_;
    FileScanWorker *worker_;
    QTimer *overdue_; ///< the thread's, which may outlive this object
};
