#include "files/filecopy.h"

#include "files/contenthash.h"
#include "files/filewriting.h"
#include "platform/filereading.h"
#include "platform/filewriter.h"

#include <QFileInfo>

namespace {

bool isCancelled(const platform::TransferControl &control)
{
    return control.cancelled && control.cancelled();
}

/// Tells every byte half when it is written and half when it is read back.
class HalvedProgress
{
public:
    explicit HalvedProgress(const platform::TransferControl &control) : control_(control) {}

    void written(qint64 bytes)
    {
        written_ = bytes;
        tell(bytes / 2);
    }
    void readBack(qint64 bytes) { tell((written_ + bytes) / 2); }

private:
    void tell(qint64 bytes)
    {
        if (bytes <= told_)
            return;
        told_ = bytes;
        if (control_.progress)
            control_.progress(bytes);
    }

    const platform::TransferControl &control_;
    qint64 written_ = 0;
    qint64 told_ = 0;
};

/// Brings the bytes of \a source into the new file \a temporary and onto the medium. The outcome is
/// Copied when they are there; hash and number of the bytes come along.
VerifiedCopy writeHashed(const QString &source, const QString &temporary,
                         const platform::TransferControl &control, HalvedProgress *progress)
{
    VerifiedCopy copy;
    platform::FileReader from(source, platform::FileReader::Way::Cached);
    const platform::FileStamp before = from.stamp();
    if (!before.isKnown())
        return copy;
    platform::FileWriter to(temporary, before.size);
    if (!to.isOpen())
        return copy;
    ContentHash hash;
    for (;;) {
        if (isCancelled(control)) {
            copy.outcome = CopyOutcome::Cancelled;
            return copy;
        }
        const qint64 got = from.read();
        if (got < 0)
            return copy;
        if (got == 0)
            break;
        hash.add(from.data(), got);
        if (!to.write(from.data(), got))
            return copy;
        copy.bytes += got;
        progress->written(copy.bytes);
    }
    const platform::FileStamp named = platform::stampOf(source);
    if (!named.isKnown())
        return copy;
    if (copy.bytes == 0)
        copy.outcome = CopyOutcome::Empty;
    else if (copy.bytes != named.size)
        copy.outcome = CopyOutcome::SizeDiffers;
    else if (named != before || from.stamp() != before)
        copy.outcome = CopyOutcome::SourceChanged;
    else if (to.finish(before.modified))
        copy.outcome = CopyOutcome::Copied;
    copy.hash = hash.result();
    return copy;
}

/// Reads \a temporary back and sets what that proves of \a copy.
CopyOutcome compareReadBack(const QString &temporary, const platform::TransferControl &control,
                            HalvedProgress *progress, VerifiedCopy *copy)
{
    const ContentReading reading = readContent(
        temporary, {control.cancelled, [progress](qint64 bytes) { progress->readBack(bytes); }});
    switch (reading.ending) {
    case ContentReading::Ending::Read:
        break;
    case ContentReading::Ending::Cancelled:
        return CopyOutcome::Cancelled;
    case ContentReading::Ending::Failed:
    case ContentReading::Ending::Changed:
        return CopyOutcome::ContentDiffers;
    }
    copy->proof = reading.proof;
    return reading.size == copy->bytes && reading.hash == copy->hash ? CopyOutcome::Copied
                                                                     : CopyOutcome::ContentDiffers;
}

VerifiedCopy copyReadBack(const QString &source, const QString &target,
                          const platform::TransferControl &control)
{
    const TemporaryFile temporary(QFileInfo(target).path());
    HalvedProgress progress(control);
    VerifiedCopy copy = writeHashed(source, temporary.path(), control, &progress);
    if (copy.outcome == CopyOutcome::Copied)
        copy.outcome = compareReadBack(temporary.path(), control, &progress, &copy);
    if (copy.outcome == CopyOutcome::Copied && isCancelled(control))
        copy.outcome = CopyOutcome::Cancelled;
    if (copy.outcome == CopyOutcome::Copied && !platform::replaceFile(temporary.path(), target))
        copy.outcome = CopyOutcome::Failed;
    return copy;
}

} // namespace

VerifiedCopy copyVerified(const QString &source, const QString &target, Verification verification,
                          const platform::TransferControl &control)
{
    VerifiedCopy copy;
    if (verification == Verification::ReadBack) {
        copy = copyReadBack(source, target, control);
    } else {
        copy.outcome = copyFile(source, target, control);
        copy.proof = Proof::Size;
        copy.bytes = QFileInfo(target).size();
    }
    // Nothing is said of what is not there.
    return copy.outcome == CopyOutcome::Copied ? copy : VerifiedCopy{copy.outcome, {}, {}, 0};
}

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
    if (isCancelled(control))
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
    case CopyOutcome::ContentDiffers:
        return QStringLiteral("文件拷贝后验证失败: %1").arg(target);
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
