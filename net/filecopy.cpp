#include "net/filecopy.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

#include <algorithm>

namespace {

constexpr qint64 secondsUntilStale = qint64(24) * 60 * 60;

/// Removes the temporary file on every way out; after a successful rename there is none.
class TemporaryFile
{
public:
    explicit TemporaryFile(QString path) : path_(std::move(path)) {}
    ~TemporaryFile() { QFile::remove(path_); }
    Q_DISABLE_COPY_MOVE(TemporaryFile)

    const QString &path() const { return path_; }

private:
    QString path_;
};

} // namespace

CopyOutcome copyFile(const QString &source, const QString &target,
                     const platform::TransferControl &control)
{
    const TemporaryFile temporary(temporaryPathIn(QFileInfo(target).path()));
    switch (platform::transferFile(source, temporary.path(), control)) {
    case platform::TransferResult::Done:
        break;
    case platform::TransferResult::Cancelled:
        return CopyOutcome::Cancelled;
    case platform::TransferResult::Failed:
        return CopyOutcome::Failed;
    }
    const QFileInfo copy(temporary.path());
    const QFileInfo original(source);
    if (!copy.exists() || !original.exists())
        return CopyOutcome::Failed;
    if (copy.size() == 0)
        return CopyOutcome::Empty;
    if (copy.size() != original.size())
        return CopyOutcome::SizeDiffers;
    if (control.cancelled && control.cancelled())
        return CopyOutcome::Cancelled;
    return platform::replaceFile(temporary.path(), target) ? CopyOutcome::Copied
                                                           : CopyOutcome::Failed;
}

QString temporaryPathIn(const QString &folder)
{
    return folder + QLatin1String("/~$") + QUuid::createUuid().toString(QUuid::Id128) +
           QLatin1String(".part");
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
