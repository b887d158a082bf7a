#include "app/diagnosis/logring.h"

#include "platform/ownfile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QLoggingCategory>
#include <QStandardPaths>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace {

constexpr int mostRings = 3;
constexpr int patienceMs = 2000;

std::mutex installing;
LogRing *installed = nullptr;      // guarded by installing
QtMessageHandler before = nullptr; // guarded by installing

QString ringPath(const QString &folder, int number)
{
    const QString path = folder + QStringLiteral("/tessavo-tools");
    return number == 0 ? path : path + QLatin1Char('-') + QString::number(number + 1);
}

/// Null when a program has that ring.
std::unique_ptr<QLockFile> lockOf(const QString &ring)
{
    auto lock = std::make_unique<QLockFile>(ring + QStringLiteral(".lock"));
    lock->setStaleLockTime(0);
    return lock->tryLock(0) ? std::move(lock) : nullptr;
}

QString fileOf(const QString &ring, int age)
{
    return age == 0 ? ring + QStringLiteral(".log") : ring + QStringLiteral(".%1.log").arg(age);
}

QChar letterOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QLatin1Char('D');
    case QtInfoMsg:
        return QLatin1Char('I');
    case QtWarningMsg:
        return QLatin1Char('W');
    case QtCriticalMsg:
        return QLatin1Char('C');
    case QtFatalMsg:
        break;
    }
    return QLatin1Char('F');
}

void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    QtMessageHandler next = nullptr;
    {
        const std::lock_guard<std::mutex> lock(installing);
        next = before;
        if (installed) {
            const QString when =
                QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
            installed->write(QStringLiteral("%1 %2 %3: ")
                                 .arg(when, letterOf(type), QLatin1String(context.category)) +
                             message);
        }
    }
    if (next)
        next(type, context, message);
}

} // namespace

struct LogRing::Shared
{
    const QString folder;
    const qint64 fileBytes;

    std::mutex mutex; // guards what follows
    std::condition_variable came;
    std::condition_variable over;
    QStringList waiting;
    int leftOut = 0;
    bool isEnding = false;
    bool hasEnded = false;

    // The thread's own.
    std::unique_ptr<QLockFile> lock;
    QString ring; ///< path of a file without its end; empty while nothing can be written
    QFile file;

    Shared(const QString &folderPath, qint64 bytes) : folder(folderPath), fileBytes(bytes) {}

    void joinRing();
    bool open();
    bool isFullFor(const QByteArray &lines) const;
    void append(const QByteArray &lines);
    void turn();
};

void LogRing::Shared::joinRing()
{
    if (!QDir().mkpath(folder))
        return;
    for (int number = 0; number < mostRings && !lock; ++number) {
        ring = ringPath(folder, number);
        lock = lockOf(ring);
    }
    if (!lock)
        ring.clear();
}

/// Makes room for a new file: each becomes one older, the oldest goes.
void LogRing::Shared::turn()
{
    file.close();
    QFile::remove(fileOf(ring, files - 1));
    for (int age = files - 1; age > 0; --age)
        QFile::rename(fileOf(ring, age - 1), fileOf(ring, age));
}

bool LogRing::Shared::open()
{
    if (file.isOpen())
        return true;
    file.setFileName(fileOf(ring, 0));
    if (!file.open(QIODevice::Append))
        return false;
    platform::closeToOthers(file.fileName());
    return true;
}

bool LogRing::Shared::isFullFor(const QByteArray &lines) const
{
    return file.size() > 0 && file.size() + lines.size() > fileBytes;
}

void LogRing::Shared::append(const QByteArray &lines)
{
    if (ring.isEmpty() || !open())
        return;
    if (isFullFor(lines)) {
        turn();
        if (!open())
            return;
        // Somebody holds an older file, and this one has stayed where it was.
        if (isFullFor(lines))
            file.resize(0);
    }
    file.write(lines);
    file.flush();
}

LogRing::LogRing(const QString &folder, qint64 fileBytes)
    : shared_(std::make_shared<Shared>(folder, fileBytes))
    , thread_([shared = shared_] { run(shared); })
{
}

LogRing::~LogRing()
{
    {
        const std::lock_guard<std::mutex> lock(installing);
        if (installed == this) {
            installed = nullptr;
            qInstallMessageHandler(before);
        }
    }
    std::unique_lock<std::mutex> lock(shared_->mutex);
    shared_->isEnding = true;
    shared_->came.notify_all();
    const bool hasEnded = shared_->over.wait_for(lock, std::chrono::milliseconds(patienceMs),
                                                 [this] { return shared_->hasEnded; });
    lock.unlock();
    if (hasEnded)
        thread_.join();
    else
        thread_.detach();
}

void LogRing::install()
{
    const std::lock_guard<std::mutex> lock(installing);
    installed = this;
    before = qInstallMessageHandler(handle);
}

void LogRing::write(const QString &line)
{
    const std::lock_guard<std::mutex> lock(shared_->mutex);
    if (shared_->waiting.size() >= mostWaiting) {
        ++shared_->leftOut;
        return;
    }
    shared_->waiting.append(line);
    shared_->came.notify_all();
}

void LogRing::run(const std::shared_ptr<Shared> &shared)
{
    shared->joinRing();
    std::unique_lock<std::mutex> lock(shared->mutex);
    for (;;) {
        shared->came.wait(lock, [&] { return shared->isEnding || !shared->waiting.isEmpty(); });
        if (shared->waiting.isEmpty())
            break;
        QStringList lines;
        lines.swap(shared->waiting);
        if (const int leftOut = std::exchange(shared->leftOut, 0))
            lines.append(QStringLiteral("... %1 lines left out").arg(leftOut));
        lock.unlock();
        for (const QString &line : qAsConst(lines))
            shared->append(line.toUtf8() + '\n');
        lock.lock();
    }
    lock.unlock();
    shared->file.close();
    shared->lock.reset();
    lock.lock();
    shared->hasEnded = true;
    shared->over.notify_all();
}

QString LogRing::standardFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
           QStringLiteral("/log");
}

QStringList LogRing::filesIn(const QString &folder)
{
    QStringList found;
    for (int number = 0; number < mostRings; ++number) {
        for (int age = 0; age < files; ++age) {
            const QString file = fileOf(ringPath(folder, number), age);
            if (QFile::exists(file))
                found.append(file);
        }
    }
    return found;
}

void LogRing::clear(const QString &folder)
{
    for (int number = 0; number < mostRings; ++number) {
        const QString ring = ringPath(folder, number);
        const bool isWritten = !lockOf(ring);
        for (int age = isWritten ? 1 : 0; age < files; ++age)
            QFile::remove(fileOf(ring, age));
    }
}
