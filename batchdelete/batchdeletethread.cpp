#include "batchdelete/batchdeletethread.h"

#include "platform/drives.h"
#include "platform/fileaccess.h"
#include "platform/folderlisting.h"

#include <QDebug>
#include <QFileInfo>

#include <exception>
#include <utility>

namespace {

QString unknownFailureText()
{
    return QStringLiteral("删除失败，未知原因");
}

/// A link is there even if what it leads to is not.
bool exists(const QString &path)
{
    return platform::isLink(path) || QFileInfo::exists(path);
}

/// Server and share of a share path; otherwise empty.
QString shareRoot(const QString &path)
{
    QString unified = path;
    unified.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (!unified.startsWith(QLatin1String("//")))
        return {};
    return QStringLiteral("//") +
           unified.section(QLatin1Char('/'), 0, 1, QString::SectionSkipEmpty);
}

} // namespace

bool isUnreachablePath(const QString &path)
{
    const QString share = shareRoot(path);
    if (!share.isEmpty())
        return !QFileInfo(share).isDir();
    return platform::isRemoteDrive(path) && !QFileInfo(platform::driveRoot(path)).isDir();
}

BatchdeleteThread::BatchdeleteThread(QString orderPhotoId, BatchDeleteFileInfo file, QString path,
                                     QObject *parent)
    : QThread(parent)
    , orderPhotoId_(std::move(orderPhotoId))
    , file_(std::move(file))
    , path_(std::move(path))
{
    qRegisterMetaType<BatchDeleteFileInfo>();
    setObjectName(QStringLiteral("BatchdeleteThread"));
    file_.missing = false;
}

void BatchdeleteThread::run()
{
    try {
        removeOrDiagnose();
    } catch (const std::exception &error) {
        qDebug() << QStringLiteral("处理异常: %1").arg(QString::fromLocal8Bit(error.what()));
        setResult(BatchDeleteFileInfo::UnknownFailure, unknownFailureText());
    } catch (...) {
        qDebug() << "未知异常";
        setResult(BatchDeleteFileInfo::UnknownFailure, unknownFailureText());
    }
    if (!stopped_)
        emit fileProcessed(orderPhotoId_, file_);
}

void BatchdeleteThread::removeOrDiagnose()
{
    if (platform::removeFile(path_))
        setResult(BatchDeleteFileInfo::Deleted, {});
    else
        diagnose();
}

void BatchdeleteThread::diagnose()
{
    if (stopped_)
        return;
    if (!exists(path_)) {
        const bool unreachable = isUnreachablePath(path_);
        if (stopped_)
            return;
        file_.missing = !unreachable;
        if (unreachable)
            setResult(BatchDeleteFileInfo::Unreachable, QStringLiteral("网络路径无法访问"));
        else
            setResult(BatchDeleteFileInfo::Deleted, {});
        return;
    }
    const bool writable = platform::mayBeRemoved(path_);
    if (stopped_)
        return;
    if (!writable) {
        setResult(BatchDeleteFileInfo::NotWritable, QStringLiteral("没有删除权限"));
        return;
    }
    const bool inUse = platform::isInUse(path_);
    if (stopped_)
        return;
    if (inUse)
        setResult(BatchDeleteFileInfo::InUse, QStringLiteral("文件被其他程序占用"));
    else
        setResult(BatchDeleteFileInfo::UnknownFailure, unknownFailureText());
}

void BatchdeleteThread::setResult(BatchDeleteFileInfo::State state, const QString &reason)
{
    file_.state = state;
    file_.reason = reason;
}
