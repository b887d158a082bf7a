#pragma once

#include "platform/systemcommands.h"
#include "tasks/stopflag.h"

#include <QObject>
#include <QSet>
#include <QString>

#include <functional>
#include <memory>

class WorkerPool;

/// What SharedFolderOpener asks of the system. Called on threads beside the interface thread.
struct FolderCommands
{
    std::function<platform::Command(const QString &localPath)> showFolder = platform::folderCommand;
    std::function<platform::Command(const QString &host, int timeoutMs)> ping =
        platform::pingCommand;
    std::function<bool(const QString &localPath)> isFolder = platform::isFolder;
    int lookTimeoutMs = 10000; ///< a look at a share that has gone away may last for minutes
};

/// How opening a folder ended.
struct FolderOpening
{
    bool success = false;
    QString errorText; ///< empty on success; may be empty on failure, when the program said nothing
};

/// Shows local and network folders in the system's file manager without ever blocking the
/// interface. Lives on the interface thread; each window that shows folders owns one. Destroying it
/// does not wait: what is still hanging is given up behind the scenes and reported to nobody.
///
/// All paths are in Windows form.
class SharedFolderOpener : public QObject
{
    Q_OBJECT

public:
    explicit SharedFolderOpener(QObject *parent = nullptr, FolderCommands commands = {});
    ~SharedFolderOpener() override;

    /// Opens the folder beside the interface thread; finished() tells how that went. A network
    /// folder is tried only when its host answers, and what is no folder (a file, nothing, a share
    /// that has gone) is never opened. Does nothing while the same folder is being opened.
    void open(const QString &path);

    /// One spelling per folder: a share as "smb://server/share", everything with slashes.
    static QString normalizePath(const QString &path);

    /// Whether \a path is being opened, in whichever spelling.
    bool isProcessing(const QString &path) const;
    void markDone(const QString &path);

    /// Whether the host of a network path answers. Blocks for up to \a timeoutMs: not for the
    /// interface thread. False for a path without a host.
    bool isHostReachable(const QString &path, int timeoutMs) const;
    /// Blocks until the file manager has taken the folder, at most some seconds more than
    /// \a timeoutMs: not for the interface thread.
    FolderOpening openInExplorer(const QString &path, int timeoutMs) const;

signals:
    void stateChanged(const QString &path, bool isProcessing);
    void finished(bool success, const QString &errorMsg);

private:
    void look(const QString &path);
    void show(const QString &path);
    void conclude(const QString &path, const FolderOpening &result);

    FolderCommands commands_;
    /// Shared with the threads, which may outlive this object; set when nobody waits any more.
    StopFlag abandoned_;
    QSet<QString> processing_;
    std::unique_ptr<WorkerPool> pool_;
};
