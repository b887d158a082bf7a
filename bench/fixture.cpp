#include "bench/fixture.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QVector>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace bench {

namespace {

int logFile = -1;

/// The program's log lines are part of what is measured, but nobody wants to read them here.
void writeLog(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QByteArray line = qFormatLogMessage(type, context, text).toUtf8() + '\n';
    const int to = type == QtFatalMsg ? STDERR_FILENO : logFile;
    [[maybe_unused]] const ssize_t written = write(to, line.constData(), size_t(line.size()));
}

void logTo(const QString &file)
{
    logFile =
        open(QFile::encodeName(file).constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (logFile < 0)
        throw Failure(QStringLiteral("%1 cannot be written").arg(file));
    qInstallMessageHandler(writeLog);
}

QString photoPath(const QString &folder, int index)
{
    return QStringLiteral("%1/IMG_%2.jpg").arg(folder).arg(index + 1, 5, 10, QLatin1Char('0'));
}

} // namespace

int runIn(const QString &parent, const std::function<void(const QString &folder)> &bench)
{
    if (!qEnvironmentVariableIsSet("TESSAVO_SERVICE_URL")) {
        std::fprintf(stderr, "Start this beside the demo service, as bench/run does:\n"
                             "tessavo-demo-service --no-pictures --data FOLDER --run -- BENCH\n");
        return 2;
    }
    QDir().mkpath(parent);
    const QTemporaryDir folder(parent + QStringLiteral("/bench-XXXXXX"));
    try {
        if (!folder.isValid())
            throw Failure(folder.errorString());
        logTo(folder.filePath(QStringLiteral("program.log")));
        bench(folder.path());
    } catch (const Failure &failure) {
        std::fprintf(stderr, "The bench failed: %s\n", failure.what());
        return 1;
    }
    return 0;
}

void makePhotos(const QString &folder, int count, int bytes)
{
    constexpr int wordBytes = int(sizeof(quint32));
    QDir().mkpath(folder);
    QRandomGenerator random(1);
    QVector<quint32> words(bytes / wordBytes + 1);
    for (int index = 0; index < count; ++index) {
        random.fillRange(words.data(), words.size());
        QFile photo(photoPath(folder, index));
        if (!photo.open(QIODevice::WriteOnly) ||
            photo.write(reinterpret_cast<const char *>(words.constData()), bytes) != bytes ||
            !photo.flush())
            throw Failure(photo.fileName() + QStringLiteral(": ") + photo.errorString());
    }
}

QStringList photoPaths(const QString &folder, int count)
{
    QStringList paths;
    paths.reserve(count);
    for (int index = 0; index < count; ++index)
        paths.append(photoPath(folder, index));
    return paths;
}

void syncDisk(const QString &folder)
{
    const int directory =
        open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0 || syncfs(directory) != 0)
        throw Failure(QStringLiteral("%1 cannot be synced").arg(folder));
    close(directory);
}

} // namespace bench
