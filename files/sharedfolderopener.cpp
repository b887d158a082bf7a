#include "files/sharedfolderopener.h"

#include "files/pathgate.h"
#include "platform/pathform.h"
#include "tasks/background.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

constexpr int foldersAtOnce = 5;
constexpr int threadExpiryMs = 60000;
constexpr int hostTimeoutMs = 1000;
constexpr int openTimeoutMs = 10000;
constexpr int startTimeoutMs = 3000;
constexpr int terminateTimeoutMs = 1000;

QString timedOutText()
{
    return QStringLiteral("操作超时：请检查网络或服务器状态");
}

/// False when the program still runs after \a timeoutMs, or when nobody waits for it any more.
bool waitForEnd(QProcess &process, int timeoutMs, const StopFlag &abandoned)
{
    constexpr qint64 sliceMs = 100;
    const QDeadlineTimer deadline(timeoutMs);
    while (process.state() != QProcess::NotRunning) {
        if (abandoned.isRaised() || deadline.hasExpired())
            return false;
        process.waitForFinished(int(std::min(sliceMs, deadline.remainingTime())));
    }
    return true;
}

void start(QProcess &process, const platform::Command &command)
{
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(command.program, command.arguments);
}

void end(QProcess &process)
{
    process.terminate();
    if (!process.waitForFinished(terminateTimeoutMs)) {
        process.kill();
        process.waitForFinished(terminateTimeoutMs);
    }
}

bool endedWell(const QProcess &process)
{
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QString hostOf(const QString &path)
{
    return QUrl(SharedFolderOpener::normalizePath(path)).host();
}

bool hostAnswers(const FolderCommands &commands, const QString &path, int timeoutMs,
                 const StopFlag &abandoned)
{
    const QString host = hostOf(path);
    if (host.isEmpty())
        return false;
    QProcess process;
    start(process, commands.ping(host, timeoutMs));
    if (!process.waitForStarted(startTimeoutMs))
        return false;
    if (!waitForEnd(process, timeoutMs, abandoned)) {
        end(process);
        return false;
    }
    return endedWell(process);
}

FolderOpening showFolder(const FolderCommands &commands, const QString &path, int timeoutMs,
                         const StopFlag &abandoned)
{
    QProcess process;
    start(process, commands.showFolder(platform::toLocalPath(path)));
    if (!process.waitForStarted(startTimeoutMs))
        return {false, QStringLiteral("无法启动系统文件管理器")};
    if (!waitForEnd(process, timeoutMs, abandoned)) {
        end(process);
        return {false, timedOutText()};
    }
    if (endedWell(process))
        return {true, {}};
    return {false, platform::textOf(process.readAllStandardError()).trimmed()};
}

QString withoutScheme(const QString &path)
{
    const QLatin1String scheme("file://");
    return path.startsWith(scheme, Qt::CaseInsensitive) ? path.mid(scheme.size()) : path;
}

/// What keeps \a path from being looked at, or nothing.
QString obstacleTo(const FolderCommands &commands, const QString &path, const StopFlag &abandoned)
{
    if (path.trimmed().isEmpty())
        return QStringLiteral("没有可以打开的文件夹");
    const pathgate::Flaw flaw = pathgate::flawOf(path);
    if (flaw != pathgate::Flaw::None)
        return QStringLiteral("无法打开 %1：%2").arg(path, pathgate::reasonOf(flaw));
    const bool isNetworkPath =
        SharedFolderOpener::normalizePath(path).startsWith(QLatin1String("smb://"));
    if (isNetworkPath && !hostAnswers(commands, path, hostTimeoutMs, abandoned))
        return QStringLiteral("无法连接到 %1：请检查网络或服务器状态").arg(hostOf(path));
    return {};
}

} // namespace

SharedFolderOpener::SharedFolderOpener(QObject *parent, FolderCommands commands)
    : QObject(parent)
    , commands_(std::move(commands))
    , pool_(std::make_unique<WorkerPool>(QStringLiteral("folder opening"), foldersAtOnce,
                                         threadExpiryMs))
{
}

SharedFolderOpener::~SharedFolderOpener()
{
    abandoned_.raise();
    // A program that hangs on a dead share would freeze the closing window.
    WorkerPool::retire(std::move(pool_));
}

void SharedFolderOpener::open(const QString &path)
{
    if (isProcessing(path))
        return;
    processing_.insert(normalizePath(path));
    emit stateChanged(path, true);

    inPool(
        pool_.get(), this,
        [commands = commands_, folder = withoutScheme(path), abandoned = abandoned_] {
            return obstacleTo(commands, folder, abandoned);
        },
        [this, path](const QString &obstacle) {
            if (obstacle.isEmpty())
                look(path);
            else
                conclude(path, {false, obstacle});
        });
}

/// The file manager is given what is a folder and nothing else: it would start a program.
void SharedFolderOpener::look(const QString &path)
{
    const auto answered = std::make_shared<bool>(false);
    const auto answer = [this, path, answered](const QString &obstacle) {
        if (std::exchange(*answered, true))
            return;
        if (obstacle.isEmpty())
            show(path);
        else
            conclude(path, {false, obstacle});
    };
    const QString folder = withoutScheme(path);
    onDisk(
        this, folder,
        [isFolder = commands_.isFolder, folder] { return isFolder(platform::toLocalPath(folder)); },
        [answer, path](bool isFolder) {
            answer(isFolder ? QString() : QStringLiteral("目录不存在: %1").arg(path));
        });
    QTimer::singleShot(commands_.lookTimeoutMs, this, [answer] { answer(timedOutText()); });
}

void SharedFolderOpener::show(const QString &path)
{
    inPool(
        pool_.get(), this,
        [commands = commands_, folder = withoutScheme(path), abandoned = abandoned_] {
            return abandoned.isRaised() ? FolderOpening()
                                        : showFolder(commands, folder, openTimeoutMs, abandoned);
        },
        [this, path](const FolderOpening &result) { conclude(path, result); });
}

void SharedFolderOpener::conclude(const QString &path, const FolderOpening &result)
{
    markDone(path);
    emit finished(result.success, result.errorText);
}

QString SharedFolderOpener::normalizePath(const QString &path)
{
    QString normalized = withoutScheme(path);
    normalized.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (normalized.startsWith(QLatin1String("//")))
        normalized.prepend(QLatin1String("smb:"));
    return normalized;
}

bool SharedFolderOpener::isProcessing(const QString &path) const
{
    return processing_.contains(normalizePath(path));
}

void SharedFolderOpener::markDone(const QString &path)
{
    processing_.remove(normalizePath(path));
    emit stateChanged(path, false);
}

bool SharedFolderOpener::isHostReachable(const QString &path, int timeoutMs) const
{
    return hostAnswers(commands_, path, timeoutMs, abandoned_);
}

FolderOpening SharedFolderOpener::openInExplorer(const QString &path, int timeoutMs) const
{
    return showFolder(commands_, path, timeoutMs, abandoned_);
}
