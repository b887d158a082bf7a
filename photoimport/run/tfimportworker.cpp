#include "photoimport/run/tfimportworker.h"

#include "files/filecopy.h"
#include "files/filewriting.h"
#include "files/paths.h"
#include "files/safename.h"
#include "ledger/copydescription.h"
#include "ledger/ledger.h"
#include "photoimport/rules/photorules.h"
#include "photoimport/run/imageoperations.h"
#include "photoimport/run/sizevariants.h"
#include "platform/pathform.h"
#include "tasks/task.h"

#include <QDebug>
#include <QFileInfo>
#include <QMutexLocker>

namespace {

constexpr unsigned long breathMs = 10; // after each job, so that disks and shares get a breath

} // namespace

PhotoOperations PhotoOperations::standard(DecodedSources *shared)
{
    return {
        imageoperations::copyOriginal, tfimportworker::copyFile,
        [shared](const QString &source, const QString &target, int longSide, JobFailure *failure) {
            return imageoperations::compressImage(source, target, longSide, shared, failure);
        }};
}

tfimportworker::tfimportworker(int workerId, PhotoOperations operations, QObject *parent)
    : QThread(parent), workerId_(workerId), operations_(std::move(operations))
{
    setObjectName(QStringLiteral("photo import %1").arg(workerId));
}

tfimportworker::~tfimportworker()
{
    stop();
    wait();
}

void tfimportworker::give(const PhotoJob &job)
{
    const QMutexLocker lock(&mutex_);
    job_ = job;
    hasJob_ = true;
    idle_ = false;
    wake_.wakeOne();
}

void tfimportworker::stop()
{
    const QMutexLocker lock(&mutex_);
    stopRequested_ = true;
    wake_.wakeAll();
}

void tfimportworker::run()
{
    PhotoJob job;
    while (takeJob(&job)) {
        const QString error = job.photo.enabled == 0 ? QString() : process(job);
        emit photoImported(job.taskId, job.photo.fileName, job.photoIndex, error.isEmpty(), error);
        msleep(breathMs);
        idle_ = true;
    }
    idle_ = true;
    emit workerFinished(workerId_);
    qDebug().noquote() << QStringLiteral("导片工作线程 %1 结束").arg(workerId_);
}

bool tfimportworker::takeJob(PhotoJob *job)
{
    QMutexLocker lock(&mutex_);
    while (!hasJob_ && !stopRequested_) {
        idle_ = true;
        wake_.wait(&mutex_);
    }
    if (stopRequested_)
        return false;
    *job = std::exchange(job_, {});
    hasJob_ = false;
    idle_ = false;
    return true;
}

/// Returns what went wrong; nothing on success.
QString tfimportworker::process(const PhotoJob &job)
{
    QString error;
    JobFailure failure;
    WrittenOriginal written;
    const QString problem = problemOf([&] { error = write(job, &failure, &written); });
    if (!problem.isEmpty())
        error = problem;
    else if (!error.isEmpty() && !failure.reason.isEmpty())
        emit failureExplained(job.taskId, job.photoIndex, failure);
    if (job.copy != 0)
        record(job, written, failure.reason.isEmpty() ? error : failure.reason);
    return error;
}

/// Tells the ledger what became of the copy; \a problem is empty when it is there.
void tfimportworker::record(const PhotoJob &job, const WrittenOriginal &written,
                            const QString &problem)
{
    if (problem.isEmpty()) {
        const ledger::CopyKind kind =
            written.isUpright ? ledger::CopyKind::Upright : ledger::CopyKind::Bytes;
        Ledger::current().finishCopy(job.copy, resultAt(targetOf(job), kind, written.proof,
                                                        written.sourceHash, written.targetHash,
                                                        written.bytes));
    } else {
        Ledger::current().failCopy(job.copy, problem);
    }
}

QString tfimportworker::targetOf(const PhotoJob &job)
{
    return joinLocalPath(platform::toLocalPath(job.targetFolder), safeFileName(job.photo.fileName));
}

QString tfimportworker::write(const PhotoJob &job, JobFailure *failure,
                              WrittenOriginal *written) const
{
    const QString folder = platform::toLocalPath(job.targetFolder);
    if (!makeFolder(folder))
        return QStringLiteral("无法创建目标目录: %1").arg(QFileInfo(folder).absoluteFilePath());
    const QString source = job.photo.sourcePath;
    const QString target = targetOf(job);
    const QString &kind = job.photo.kind;

    if (kind == photorules::originalKind) {
        return operations_.copyOriginal(source, target, failure, written)
                   ? QString()
                   : QStringLiteral("原图拷贝失败");
    }
    if (kind == photorules::trialVideoKind) {
        return operations_.copyVideo(source, target, failure, written)
                   ? QString()
                   : QStringLiteral("试拍视频拷贝失败");
    }
    if (kind == photorules::retouchedVideoKind) {
        return operations_.copyVideo(source, target, failure, written)
                   ? QString()
                   : QStringLiteral("精修视频拷贝失败");
    }
    const int longSide = job.photo.targetSize.toInt();
    return operations_.compress(source, target, longSide, failure)
               ? QString()
               : photorules::compressionFailure(QString::number(longSide));
}

bool tfimportworker::copyFile(const QString &source, const QString &target, JobFailure *failure,
                              WrittenOriginal *written)
{
    const auto fail = [failure](const QString &reason) {
        if (failure)
            failure->reason = reason;
        return false;
    };
    qDebug().noquote() << QStringLiteral("原文件路径：") << source;
    qDebug().noquote() << QStringLiteral("目标文件路径：") << target;
    if (!QFileInfo::exists(source)) {
        qDebug().noquote() << QStringLiteral("源文件不存在：") << source;
        return fail(QStringLiteral("源文件不存在"));
    }
    if (!mayReplace(target)) {
        qDebug().noquote() << QStringLiteral(" 无法删除旧文件：") << target;
        return fail(QStringLiteral("无法删除旧文件"));
    }
    const bool copied = imageoperations::copyBytes(source, target, failure, written);
    qDebug().noquote() << (copied ? QStringLiteral("copyFile 拷贝成功：")
                                  : QStringLiteral("copyFile 拷贝失败："))
                       << target;
    return copied;
}
