#include "bench/fixture.h"

#include "app/context/accountcontext.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QVector>

#include <cstdio>
#include <fcntl.h>
#include <malloc.h>
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
        throw Failure("%1 cannot be written"_s.arg(file));
    qInstallMessageHandler(writeLog);
}

QString photoPath(const QString &folder, int index)
{
    return "%1/IMG_%2.jpg"_s.arg(folder).arg(index + 1, 5, 10, QLatin1Char('0'));
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
    const QTemporaryDir folder(parent + "/bench-XXXXXX"_s);
    try {
        if (!folder.isValid())
            throw Failure(folder.errorString());
        logTo(folder.filePath("program.log"_s));
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
            throw Failure(photo.fileName() + ": "_s + photo.errorString());
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
        throw Failure("%1 cannot be synced"_s.arg(folder));
    close(directory);
}

QStringList makePictures(const QString &folder, int count)
{
    QDir().mkpath(folder);
    const QByteArray bytes = jpegOf(cornerPicture({300, 200}));
    QStringList paths;
    for (int index = 0; index < count; ++index) {
        QFile file("%1/IMG_%2.jpg"_s.arg(folder).arg(index));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            throw Failure(file.fileName() + ": "_s + file.errorString());
        paths.append(file.fileName());
    }
    return paths;
}

void logIn()
{
    AccountContext::uid = "9001"_s;
    AccountContext::eid = "3101"_s;
    AccountContext::superId = "7001"_s;
    AccountContext::shopId = "101"_s;
    AccountContext::shopList = {{"101"_s, "一店"_s, {}, {}}};
}

double residentMb()
{
    malloc_trim(0);
    QFile file("/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(file.errorString());
    const qint64 pages = file.readAll().split(' ').value(1).toLongLong();
    return double(pages * sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

/// Runs xargs with four processes at once over \a files.
static void runForEach(const QStringList &files, const QStringList &command)
{
    QByteArray names;
    for (const QString &file : files)
        names += QFile::encodeName(file) + '\0';
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start("xargs"_s, QStringList{"-0"_s, "-P4"_s} + command);
    process.write(names);
    process.closeWriteChannel();
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        throw Failure("xargs failed: "_s + command.join(QLatin1Char(' ')));
}

void copyPlainly(const QStringList &sources, const QString &target)
{
    QDir().mkpath(target);
    runForEach(sources, {"-n10"_s, "cp"_s, "-t"_s, target});
}

void readDirectly(const QString &folder)
{
    QStringList paths;
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files);
    for (const QFileInfo &file : files)
        paths += file.filePath();
    runForEach(paths, {"-I{}"_s, "dd"_s, "if={}"_s, "of=/dev/null"_s, "bs=2M"_s, "iflag=direct"_s,
                       "status=none"_s});
}

void warm(const QString &folder)
{
    QByteArray buffer(1 << 20, Qt::Uninitialized);
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            throw Failure(file.errorString());
        while (file.read(buffer.data(), buffer.size()) > 0) {
        }
    }
    syncDisk(folder);
}

} // namespace bench
