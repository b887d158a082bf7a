#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <functional>

/// Makes the file \a target, replacing one that stands there: the one way in which this program
/// writes a file that somebody else will read. \a write is given a temporary name in the same
/// folder and makes the file there; only when it returns true, and what it wrote is on the medium,
/// is that file renamed onto the target. Otherwise, and when \a write throws, an earlier file is
/// untouched and nothing is left behind. Whether the earlier file may be replaced is for the caller
/// to ask first. Blocks; for worker threads.
bool writeWholeFile(const QString &target,
                    const std::function<bool(const QString &temporary)> &write);

/// Whether writeWholeFile() and copyFile() may put a file under the name \a target: nothing stands
/// there, or a file or link without a read-only mark does. Touches the disk.
bool mayReplace(const QString &target);

/// Whether the disk that \a folder lies on has \a bytes left; true as well when that cannot be
/// told. Asked after writing failed, to tell why. Touches the disk.
bool hasRoomFor(const QString &folder, qint64 bytes);

/// Tells that it has not.
QString noRoomText();

/// writeWholeFile() of \a bytes; false, and nothing changed, where mayReplace() says no. Blocks;
/// for worker threads.
bool writeBytes(const QString &target, const QByteArray &bytes);

/// Makes \a folder and whatever lacks above it; true when it is there then. Several threads may
/// make the same folders at the same time, which QDir::mkpath() does not stand on Windows: it takes
/// a folder that another thread was faster to make for one that cannot be made. Blocks; for worker
/// threads.
bool makeFolder(const QString &folder);

/// A name for a file being written into \a folder until it is whole; no listing of photos takes it.
QString temporaryPathIn(const QString &folder);

/// Removes temporary files that a killed process left in \a folder, once they are older than a day,
/// and nothing else. Blocks; for worker threads.
void removeStaleTemporaries(const QString &folder,
                            const QDateTime &now = QDateTime::currentDateTimeUtc());

/// The name of a file being written; removes the file on every way out. After a successful rename
/// there is none.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString &folder) : path_(temporaryPathIn(folder)) {}
    ~TemporaryFile();
    Q_DISABLE_COPY_MOVE(TemporaryFile)

    const QString &path() const { return path_; }

private:
    QString path_;
};
