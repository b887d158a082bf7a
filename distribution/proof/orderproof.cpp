#include "distribution/proof/orderproof.h"

#include "files/pathgate.h"
#include "files/paths.h"
#include "platform/folderlisting.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QStringList>

namespace {

/// Equal for two paths that Windows takes for one.
QString comparable(const QString &path)
{
    return QDir::cleanPath(path).toCaseFolded();
}

struct Standing
{
    qint64 size = 0;
    bool isHidden = false;
};

struct Contents
{
    bool isWhole = true;
    QHash<QString, Standing> files; ///< by comparable()
};

Contents contentsOf(const QString &orderFolder)
{
    Contents contents;
    QStringList folders{QDir::cleanPath(orderFolder)};
    const QString old = comparable(joinLocalPath(folders.first(), orderproof::oldFiles));
    while (!folders.isEmpty()) {
        const QString folder = folders.takeLast();
        const auto take = [&](const platform::FolderEntry &entry) {
            const QString path = joinLocalPath(folder, entry.name);
            if (entry.kind == platform::EntryKind::File)
                contents.files.insert(comparable(path), {entry.size, entry.isHidden});
            else if (entry.kind == platform::EntryKind::Folder && comparable(path) != old)
                folders.append(path);
            return true;
        };
        if (platform::listFolder(folder, take) != platform::FolderListing::Done)
            contents.isWhole = false;
    }
    return contents;
}

void compare(const FileOutcome &file, const Contents &contents, OrderProof *proof)
{
    using Why = MissingFile::Why;
    const auto standing = contents.files.constFind(comparable(file.target));
    const bool stands = standing != contents.files.constEnd();
    if (file.ending == FileOutcome::Ending::NotWritten)
        proof->missing.append({file.target, stands ? Why::NotReplaced : Why::NotWritten});
    else if (!stands)
        proof->missing.append({file.target, Why::Gone});
    else if (file.isWritten() && standing->size != file.size)
        proof->missing.append({file.target, Why::SizeDiffers});
    else
        ++proof->inPlace;
}

} // namespace

bool EarlierFile::isUnchanged() const
{
    const QFileInfo file(path);
    return file.isFile() && !file.isSymLink() && file.size() == size &&
           file.lastModified().toMSecsSinceEpoch() == modified;
}

namespace orderproof {

OrderProof prove(const QString &folder, const QVector<FileOutcome> &files,
                 const QVector<EarlierFile> &earlier, const QString &tool)
{
    OrderProof proof;
    proof.folder = folder;
    const Contents contents = contentsOf(folder);
    proof.isRead = contents.isWhole;
    QHash<QString, FileOutcome::Ending> planned;
    for (const FileOutcome &file : files) {
        const QString path = comparable(file.target);
        if (planned.contains(path))
            continue;
        planned.insert(path, file.ending);
        compare(file, contents, &proof);
    }
    proof.expected = planned.size();
    for (auto file = contents.files.cbegin(); file != contents.files.cend(); ++file) {
        const bool isOurs = planned.value(file.key()) != FileOutcome::Ending::NotWritten;
        proof.others += isOurs || file->isHidden ? 0 : 1;
    }
    for (const EarlierFile &file : earlier) {
        const QString path = comparable(file.path);
        // What was to be written but could not keeps what stands there.
        if (planned.contains(path) || !contents.files.contains(path) ||
            !pathgate::isBelow(file.path, folder) || !file.isUnchanged())
            continue;
        (file.tool == tool ? proof.earlier : proof.ofOtherCards).append(file);
    }
    return proof;
}

QString textOf(MissingFile::Why why)
{
    switch (why) {
    case MissingFile::Why::NotWritten:
        return QStringLiteral("没有写入");
    case MissingFile::Why::NotReplaced:
        return QStringLiteral("没有写入，仍是以前的文件");
    case MissingFile::Why::Gone:
        return QStringLiteral("写入后不见了");
    case MissingFile::Why::SizeDiffers:
        return QStringLiteral("大小与写入时不同");
    }
    return {};
}

} // namespace orderproof
