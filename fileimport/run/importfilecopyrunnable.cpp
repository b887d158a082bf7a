#include "fileimport/run/importfilecopyrunnable.h"

#include "app/context/importverification.h"
#include "files/filewriting.h"
#include "files/paths.h"
#include "ledger/copydescription.h"
#include "ledger/ledger.h"
#include "platform/pathform.h"

#include <QDebug>
#include <QFileInfo>

namespace {

VerifiedCopy copyAsInstalled(const QString &source, const QString &target,
                             const platform::TransferControl &control)
{
    const bool readsBack = importverification::readsBack();
    return copyVerified(source, target, readsBack ? Verification::ReadBack : Verification::Size,
                        control);
}

} // namespace

ImportFileCopyRunnable::ImportFileCopyRunnable(ImportFile file, CopyFunction copy)
    : file_(std::move(file)), copy_(copy ? std::move(copy) : copyAsInstalled)
{
}

QString ImportFileCopyRunnable::cancelledText()
{
    return QStringLiteral("任务已取消");
}

void ImportFileCopyRunnable::cancel()
{
    cancelled_.raise();
}

bool ImportFileCopyRunnable::isCancelled() const
{
    return cancelled_.isRaised();
}

void ImportFileCopyRunnable::perform()
{
    tell(process());
}

void ImportFileCopyRunnable::failed(const QString &problem)
{
    tell(endFailed(problem));
}

void ImportFileCopyRunnable::tell(Ending ending)
{
    if (ending == Ending::Cancelled)
        emit copyCancelled(file_);
    else
        emit copyFinished(file_);
}

ImportFileCopyRunnable::Ending ImportFileCopyRunnable::process()
{
    if (isCancelled())
        return cancelled();
    const QString problem = sourceProblem();
    if (!problem.isEmpty())
        return endFailed(problem);
    if (isCancelled())
        return cancelled();
    const QString target =
        joinLocalPath(platform::toLocalPath(file_.targetFolder), file_.targetName());
    if (!mayReplace(target))
        return endFailed(QStringLiteral("无法覆盖已存在的文件: %1").arg(target));
    if (isCancelled())
        return cancelled();
    return copyTo(target);
}

QString ImportFileCopyRunnable::sourceProblem() const
{
    const QFileInfo source(file_.sourcePath);
    if (!source.exists())
        return QStringLiteral("原文件不存在: %1").arg(file_.sourcePath);
    if (!source.isFile())
        return QStringLiteral("路径不是文件: %1").arg(file_.sourcePath);
    if (!source.isReadable())
        return QStringLiteral("原文件无法读取: %1").arg(file_.sourcePath);
    if (source.size() == 0)
        return QStringLiteral("文件大小为0KB，无法导入");
    return {};
}

ImportFileCopyRunnable::Ending ImportFileCopyRunnable::copyTo(const QString &target)
{
    platform::TransferControl control;
    control.cancelled = [this] { return isCancelled(); };
    control.progress = [this](qint64 bytes) { bytesCopied_ = bytes; };
    const VerifiedCopy copy = copy_(file_.sourcePath, target, control);
    switch (copy.outcome) {
    case CopyOutcome::Copied:
        break;
    case CopyOutcome::Cancelled:
        return cancelled();
    case CopyOutcome::Failed:
        return isCancelled() ? cancelled()
                             : endFailed(QStringLiteral("文件拷贝失败(可能是磁盘已满或权限受限)"));
    case CopyOutcome::Empty:
        return isCancelled() ? cancelled() : endFailed(QStringLiteral("文件拷贝后大小为0KB"));
    case CopyOutcome::SizeDiffers:
        return endFailed(QStringLiteral("文件大小不一致，拷贝可能不完整"));
    case CopyOutcome::SourceChanged:
        return endFailed(QStringLiteral("文件在拷贝过程中发生变化"));
    case CopyOutcome::ContentDiffers:
        return endFailed(QStringLiteral("文件拷贝后验证失败: %1").arg(target));
    }

    // From here on the target holds the whole photo, and nothing takes it away again: not a late
    // cancellation, and not a card that is pulled now.
    if (!QFileInfo::exists(target))
        return endFailed(QStringLiteral("文件拷贝后验证失败: %1").arg(target));
    Ledger::current().finishCopy(recorded_, resultAt(target, ledger::CopyKind::Bytes, copy.proof,
                                                     copy.hash, copy.hash, copy.bytes));
    file_.state = ImportFile::Imported;
    file_.message = QStringLiteral("拷贝成功");
    qDebug().noquote() << QStringLiteral("文件拷贝成功: %1 -> %2").arg(file_.sourcePath, target);
    return Ending::Finished;
}

ImportFileCopyRunnable::Ending ImportFileCopyRunnable::cancelled()
{
    endFailed(cancelledText());
    return Ending::Cancelled;
}

ImportFileCopyRunnable::Ending ImportFileCopyRunnable::endFailed(const QString &message)
{
    Ledger::current().failCopy(recorded_, message);
    file_.state = ImportFile::Failed;
    file_.message = message;
    return Ending::Finished;
}

bool ImportFileCopyRunnable::ensureFolder(const QString &folder, QString *error)
{
    if (QFileInfo(folder).isDir())
        return true;
    if (!makeFolder(folder)) {
        *error = QStringLiteral("创建目录失败: %1").arg(folder);
        return false;
    }
    if (!QFileInfo(folder).isDir()) {
        *error = QStringLiteral("目录创建后验证失败: %1").arg(folder);
        return false;
    }
    qDebug().noquote() << QStringLiteral("目录创建成功: %1").arg(folder);
    return true;
}
