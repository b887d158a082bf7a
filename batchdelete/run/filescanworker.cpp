#include "batchdelete/run/filescanworker.h"

#include "batchdelete/run/batchdeletethread.h"
#include "platform/folderlisting.h"
#include "platform/pathform.h"
#include "tasks/task.h"

#include <QDir>
#include <QStringList>

#include <utility>

namespace {

constexpr int filesPerProgress = 100;

FileScanResult failed(const QString &text)
{
    return {false, text, {}, false};
}

QString deniedText(const QString &path)
{
    return QStringLiteral("没有权限访问目录: %1").arg(path);
}

/// Why the folder could not be read.
QString failureText(platform::FolderListing listing, const QString &path)
{
    if (listing == platform::FolderListing::Denied)
        return deniedText(path);
    // Of a share that is gone the system says one thing or another.
    if (path.startsWith(QLatin1String("\\\\")) || path.startsWith(QLatin1String("//")))
        return QStringLiteral("共享目录连接失败: %1\n请检查网络连接或共享目录权限").arg(path);
    return listing == platform::FolderListing::Missing
               ? QStringLiteral("目录不存在: %1").arg(path)
               : QStringLiteral("读取目录失败: %1").arg(path);
}

} // namespace

void FileScanWorker::prepare()
{
    cancelled_ = false;
}

void FileScanWorker::scan(const QString &path)
{
    FileScanResult found;
    const QString problem = problemOf([&] { found = result(path); });
    if (!problem.isEmpty())
        found = failed(problem);
    files_.clear();
    emit finished(found);
}

FileScanResult FileScanWorker::result(const QString &path)
{
    count_ = 0;
    files_.clear();
    failure_.clear();
    if (path.isEmpty())
        return failed(QStringLiteral("扫描路径为空"));
    if (cancelled_)
        return failed(QStringLiteral("用户取消"));

    root_ = QDir(platform::toLocalPath(path)).absolutePath();
    const auto first =
        platform::listFolder(root_, [](const platform::FolderEntry &) { return false; });
    if (first != platform::FolderListing::Done && first != platform::FolderListing::Stopped)
        return {false,
                failureText(first, path),
                {},
                first == platform::FolderListing::Missing && !isUnreachablePath(path)};
    const bool whole = walk(root_, 1);
    if (!whole && cancelled_)
        return failed(QStringLiteral("扫描已取消"));
    return {whole, whole ? QString() : failure_, std::exchange(files_, {}), false};
}

bool FileScanWorker::walk(const QString &folderPath, int depth)
{
    if (cancelled_)
        return false;
    if (maximumDepth_ > 0 && depth > maximumDepth_)
        return true;
    emit progress(count_, folderPath);
    QStringList folders;
    const auto listing = platform::listFolder(folderPath, [&](const platform::FolderEntry &entry) {
        if (entry.kind == platform::EntryKind::Folder)
            folders.append(entry.name);
        return take(folderPath, entry) && !cancelled_;
    });
    switch (listing) {
    case platform::FolderListing::Done:
        break;
    case platform::FolderListing::Stopped:
        return false;
    case platform::FolderListing::Denied: {
        // What is in it stays, and the user is to see that; the rest of the order is not affected.
        const int name = folderPath.lastIndexOf(QLatin1Char('/'));
        keep(folderPath.left(name), folderPath.mid(name + 1), deniedText(folderPath));
        return true;
    }
    case platform::FolderListing::Missing:
    case platform::FolderListing::Failed:
        failure_ = failureText(listing, folderPath);
        return false;
    }
    const QString prefix =
        folderPath.endsWith(QLatin1Char('/')) ? folderPath : folderPath + QLatin1Char('/');
    for (const QString &folder : qAsConst(folders)) {
        if (!walk(prefix + folder, depth + 1))
            return false;
    }
    return true;
}

bool FileScanWorker::take(const QString &folderPath, const platform::FolderEntry &entry)
{
    switch (entry.kind) {
    case platform::EntryKind::Folder:
        return true;
    case platform::EntryKind::FolderLink:
        keep(folderPath, entry.name, QStringLiteral("指向其他文件夹的链接，不删除"));
        return true;
    case platform::EntryKind::Other:
        keep(folderPath, entry.name, QStringLiteral("不是普通文件，不删除"));
        return true;
    case platform::EntryKind::Unnameable:
        keep(folderPath, entry.name, QStringLiteral("文件名无法识别，请在存储设备上手动处理"));
        return true;
    case platform::EntryKind::File:
        break;
    }
    BatchDeleteFileInfo file;
    file.folderPath = folderPath;
    file.fileName = entry.name;
    file.size = entry.size;
    file.modified = entry.modified;
    file.rootLength = root_.size();
    files_.append(file);
    if (++count_ % filesPerProgress == 0)
        emit progress(count_, folderPath);
    return true;
}

void FileScanWorker::keep(const QString &folderPath, const QString &name, const QString &reason)
{
    BatchDeleteFileInfo file;
    file.folderPath = folderPath;
    file.fileName = name;
    file.rootLength = root_.size();
    file.kept = true;
    file.reason = reason;
    files_.append(file);
}
