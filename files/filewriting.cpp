#include "files/filewriting.h"

#include "files/paths.h"
#include "platform/fileaccess.h"
#include "platform/filetransfer.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStorageInfo>
#include <QUuid>

#include <algorithm>

namespace {

constexpr qint64 secondsUntilStale = qint64(24) * 60 * 60;

} // namespace

TemporaryFile::~TemporaryFile()
{
    QFile::remove(path_);
}

bool writeWholeFile(const QString &target, const std::function<bool(const QString &)> &write)
{
    const TemporaryFile temporary(QFileInfo(target).path());
    return write(temporary.path()) && platform::flushToMedium(temporary.path()) &&
           platform::replaceFile(temporary.path(), target);
}

bool mayReplace(const QString &target)
{
    const QFileInfo existing(target);
    return (!existing.exists() && !existing.isSymLink()) || platform::mayBeRemoved(target);
}

bool hasRoomFor(const QString &folder, qint64 bytes)
{
    const QStorageInfo disk(folder);
    return !disk.isValid() || disk.bytesAvailable() < 0 || disk.bytesAvailable() >= bytes;
}

QString noRoomText()
{
    return QStringLiteral("目标磁盘空间不足");
}

bool writeBytes(const QString &target, const QByteArray &bytes)
{
    return mayReplace(target) && writeWholeFile(target, [&bytes](const QString &temporary) {
               QFile file(temporary);
               return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) &&
                      file.write(bytes) == bytes.size() && file.flush();
           });
}

bool makeFolder(const QString &folder)
{
    const QString path = QDir::cleanPath(folder);
    const auto isThere = [&path] { return QDir().mkdir(path) || QFileInfo(path).isDir(); };
    if (isThere())
        return true;
    const QString above = QFileInfo(path).path();
    return above != path && makeFolder(above) && isThere();
}

QString temporaryPathIn(const QString &folder)
{
    return joinLocalPath(folder, QLatin1String("~$") + QUuid::createUuid().toString(QUuid::Id128) +
                                     QLatin1String(".part"));
}

void removeStaleTemporaries(const QString &folder, const QDateTime &now)
{
    static const QRegularExpression ours(QStringLiteral("^~\\$[0-9a-f]{32}\\.part$"));
    // Files that start like this are hidden ones for some systems.
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    while (files.hasNext()) {
        files.next();
        const QFileInfo file = files.fileInfo();
        if (!ours.match(file.fileName()).hasMatch())
            continue;
        // The source's time of modification was kept; when the copy was begun only the others tell,
        // and not every share keeps all of them.
        const QDateTime begun = std::max(file.metadataChangeTime(), file.birthTime());
        if (begun.isValid() && begun.secsTo(now) > secondsUntilStale)
            QFile::remove(file.filePath());
    }
}
