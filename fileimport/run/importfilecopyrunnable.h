#pragma once

#include "fileimport/rules/importrecords.h"
#include "files/filecopy.h"
#include "ledger/ledgerrecords.h"
#include "tasks/stopflag.h"
#include "tasks/task.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>

/// Copies one file into its order's folder and verifies the copy (files/filecopy.h). Runs on a pool
/// thread and tells its result by one signal; connect to it queued. An earlier file under the
/// target's name is replaced; unless the copy is whole it stays as it was.
class ImportFileCopyRunnable : public QObject, public Task
{
    Q_OBJECT

public:
    /// Copies a source onto a target, both as this machine writes paths.
    using CopyFunction = std::function<VerifiedCopy(const QString &, const QString &,
                                                    const platform::TransferControl &)>;

    /// Without \a copy as the installation wants files to be copied.
    explicit ImportFileCopyRunnable(ImportFile file, CopyFunction copy = {});

    /// Has the ledger told what became of the copy that it knows by \a copy. Before the task runs.
    void record(ledger::CopyId copy) { recorded_ = copy; }
    ledger::CopyId recorded() const { return recorded_; }
    static QString cancelledText();

    /// Asks the task to end at its next step; any thread.
    void cancel();
    virtual bool isCancelled() const;
    /// Bytes of the file that are copied so far; any thread.
    qint64 bytesCopied() const { return bytesCopied_; }
    const ImportFile &file() const { return file_; }

    /// Makes sure that \a folder exists, with all its parents. On failure \a error says what went
    /// wrong. Blocks; for worker threads.
    static bool ensureFolder(const QString &folder, QString *error);

signals:
    void copyFinished(const ImportFile &file);
    /// Part of the interface; whole-file copying tells its progress by bytesCopied() alone.
    void copyProgress(qint64 bytesCopied, qint64 totalBytes);
    void copyCancelled(const ImportFile &file);

private:
    enum class Ending { Finished, Cancelled };

    void perform() override;
    void failed(const QString &problem) override;
    Ending process();
    Ending cancelled();
    Ending endFailed(const QString &message);
    void tell(Ending ending);
    QString sourceProblem() const;
    Ending copyTo(const QString &target);

    ImportFile file_;
    ledger::CopyId recorded_ = 0;
    CopyFunction copy_;
    StopFlag cancelled_;
    std::atomic<qint64> bytesCopied_{0};
};
