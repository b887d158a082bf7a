#include "bench/fixture.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QVector>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace bench {

namespace {

int logFile = -1;

void writeLog(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QByteArray line = qFormatLogMessage(type, context, text).toUtf8() + '\n';
    const int to = type == QtDebugMsg || type == QtInfoMsg ? logFile : STDERR_FILENO;
    [[maybe_unused]] const ssize_t written = write(to, line.constData(), size_t(line.size()));
}

QString photoPath(const QString &folder, int index)
{
    return QStringLiteral("%1/IMG_%2.jpg").arg(folder).arg(index + 1, 5, 10, QLatin1Char('0'));
}

} // namespace

void needDemoService()
{
    if (qEnvironmentVariableIsSet("TESSAVO_SERVICE_URL"))
        return;
    std::fprintf(stderr, "Start this beside the demo service, as bench/run does:\n"
                         "tessavo-demo-service --no-pictures --data FOLDER --run -- BENCH ...\n");
    std::exit(2);
}

std::unique_ptr<QTemporaryDir> makeFolder(const QString &parent)
{
    QDir().mkpath(parent);
    auto folder = std::make_unique<QTemporaryDir>(parent + QStringLiteral("/bench-XXXXXX"));
    if (!folder->isValid())
        qFatal("no folder in %s: %s", qUtf8Printable(parent),
               qUtf8Printable(folder->errorString()));
    return folder;
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
            qFatal("%s: %s", qUtf8Printable(photo.fileName()), qUtf8Printable(photo.errorString()));
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

void logTo(const QString &file)
{
    logFile =
        open(QFile::encodeName(file).constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (logFile < 0)
        qFatal("%s cannot be written", qUtf8Printable(file));
    qInstallMessageHandler(writeLog);
}

void syncDisk(const QString &folder)
{
    const int directory =
        open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0 || syncfs(directory) != 0)
        qFatal("%s cannot be synced", qUtf8Printable(folder));
    close(directory);
}

} // namespace bench
