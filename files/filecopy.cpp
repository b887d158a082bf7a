#include "files/filecopy.h"

#include "files/filewriting.h"

#include <QFileInfo>

CopyOutcome copyFile(const QString &source, const QString &target,
                     const platform::TransferControl &control)
{
    const TemporaryFile temporary(QFileInfo(target).path());
    const platform::TransferResult transfer =
        platform::transferFile(source, temporary.path(), control);
    switch (transfer) {
    case platform::TransferResult::Done:
    case platform::TransferResult::SourceChanged:
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
    if (transfer == platform::TransferResult::SourceChanged)
        return CopyOutcome::SourceChanged;
    if (control.cancelled && control.cancelled())
        return CopyOutcome::Cancelled;
    return platform::replaceFile(temporary.path(), target) ? CopyOutcome::Copied
                                                           : CopyOutcome::Failed;
}

QString copyProblem(CopyOutcome outcome, const QString &source, const QString &target)
{
    switch (outcome) {
    case CopyOutcome::Copied:
    case CopyOutcome::Cancelled:
        return {};
    case CopyOutcome::Empty:
        return QStringLiteral("文件大小为0");
    case CopyOutcome::SizeDiffers:
    case CopyOutcome::SourceChanged:
        return QStringLiteral("文件在拷贝过程中发生变化");
    case CopyOutcome::Failed:
        break;
    }
    const QFileInfo file(source);
    if (!file.isFile() || !file.isReadable())
        return QStringLiteral("无法读取源文件");
    if (!hasRoomFor(QFileInfo(target).path(), file.size()))
        return noRoomText();
    return QStringLiteral("无法读取源文件或写入目标文件");
}
