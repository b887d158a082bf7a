#include "batchdelete/run/batchdeletethread.h"

#include "batchdelete/run/emptiedfolder.h"
#include "platform/drives.h"
#include "platform/fileaccess.h"
#include "platform/folderlisting.h"
#include "tasks/task.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

QString unknownFailureText()
{
    return QStringLiteral("删除失败，未知原因");
}

QString notWritableText()
{
    return QStringLiteral("没有删除权限");
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
                                     QStringList above, QObject *parent)
    : QThread(parent)
    , orderPhotoId_(std::move(orderPhotoId))
    , file_(std::move(file))
    , path_(std::move(path))
    , above_(std::move(above))
{
    qRegisterMetaType<BatchDeleteFileInfo>();
    setObjectName(QStringLiteral("BatchdeleteThread"));
    file_.missing = false;
}

void BatchdeleteThread::run()
{
    if (!problemOf([this] { removeOrDiagnose(); }).isEmpty())
        setResult(BatchDeleteFileInfo::UnknownFailure, unknownFailureText());
    if (!stopped_.isRaised())
        emit fileProcessed(orderPhotoId_, file_);
}

void BatchdeleteThread::removeOrDiagnose()
{
    const QString link = linkOnTheWay();
    if (!link.isEmpty()) {
        setResult(BatchDeleteFileInfo::Failed,
                  QStringLiteral("目录已变成链接，不删除: %1").arg(link));
        return;
    }
    switch (platform::removeListed(path_, file_.size, file_.modified)) {
    case platform::Removal::Removed:
        setResult(BatchDeleteFileInfo::Deleted, {});
        break;
    case platform::Removal::Changed:
        file_.changed = true;
        setResult(BatchDeleteFileInfo::Failed, changedFileText());
        break;
    case platform::Removal::Denied:
        diagnose({BatchDeleteFileInfo::NotWritable, notWritableText()});
        break;
    case platform::Removal::Refused:
        diagnose({BatchDeleteFileInfo::UnknownFailure, unknownFailureText()});
        break;
    }
}

/// The folder, of all on the way to the file, that has become a link since they were listed: what
/// lies behind it is not the order's. Empty when none has.
QString BatchdeleteThread::linkOnTheWay() const
{
    QStringList way = above_;
    for (QString folder = file_.folderPath; !folder.isEmpty() && folder.size() >= file_.rootLength;
         folder.truncate(folder.lastIndexOf(QLatin1Char('/'))))
        way.append(folder);
    const auto link = std::find_if(way.cbegin(), way.cend(), platform::isLink);
    return link == way.cend() ? QString() : *link;
}

/// \a otherwise: the result when nothing else explains the failure.
void BatchdeleteThread::diagnose(const Result &otherwise)
{
    if (stopped_.isRaised())
        return;
    const platform::Presence presence = platform::presenceOf(path_);
    const bool there = presence == platform::Presence::There;
    const bool unreachable = !there && !stopped_.isRaised() && isUnreachablePath(path_);
    const bool writable = there && platform::mayBeRemoved(path_);
    const bool inUse = writable && !stopped_.isRaised() && platform::isInUse(path_);
    if (stopped_.isRaised())
        return;
    file_.missing = presence == platform::Presence::Gone && !unreachable;
    if (unreachable)
        setResult(BatchDeleteFileInfo::Unreachable, emptiedfolder::unreachableText());
    else if (file_.missing)
        setResult(BatchDeleteFileInfo::Deleted, {});
    else if (presence == platform::Presence::Denied || (there && !writable))
        setResult(BatchDeleteFileInfo::NotWritable, notWritableText());
    else if (inUse)
        setResult(BatchDeleteFileInfo::InUse, QStringLiteral("文件被其他程序占用"));
    else
        setResult(otherwise.first, otherwise.second);
}

void BatchdeleteThread::setResult(BatchDeleteFileInfo::State state, const QString &reason)
{
    file_.state = state;
    file_.reason = reason;
}
