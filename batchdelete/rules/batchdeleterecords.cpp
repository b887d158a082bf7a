#include "batchdelete/rules/batchdeleterecords.h"

#include "files/paths.h"
#include "look/colours.h"

#include <algorithm>
#include <iterator>

QString BatchDeleteFileInfo::folder() const
{
    return folderPath.mid(folderPath.lastIndexOf(QLatin1Char('/')) + 1);
}

QString BatchDeleteFileInfo::fullPath() const
{
    return joinLocalPath(folderPath, fileName);
}

QString BatchDeleteFileInfo::shortPath() const
{
    const QString below = fullPath().mid(rootLength);
    return below.startsWith(QLatin1Char('/')) ? below.mid(1) : below;
}

QString BatchDeleteFileInfo::displayName() const
{
    if (missing)
        return fileName + QStringLiteral(" (文件不存在)");
    return state == InUse ? fileName + QStringLiteral(" (文件被占用)") : fileName;
}

QString changedFileText()
{
    return QStringLiteral("文件已变化，未删除");
}

QString deletionStateText(int state)
{
    switch (state) {
    case BatchDeleteFileInfo::NotDeleted:
        return QStringLiteral("未删除");
    case BatchDeleteFileInfo::Deleting:
        return QStringLiteral("删除中");
    case BatchDeleteFileInfo::Deleted:
        return QStringLiteral("已删除");
    case BatchDeleteFileInfo::NotReported:
        return QStringLiteral("提交状态失败");
    case BatchDeleteFileInfo::Failed:
    case BatchDeleteFileInfo::InUse:
        return QStringLiteral("删除失败");
    default:
        return QStringLiteral("未知");
    }
}

QRgb deletionStateColour(int state)
{
    switch (state) {
    case BatchDeleteFileInfo::NotDeleted:
        return colours::fileUntouched;
    case BatchDeleteFileInfo::Deleting:
        return colours::fileBeingDeleted;
    case BatchDeleteFileInfo::Deleted:
        return colours::fileDeleted;
    case BatchDeleteFileInfo::NotReported:
        return colours::deletionUnreported;
    case BatchDeleteFileInfo::Failed:
    case BatchDeleteFileInfo::InUse:
        return colours::deletionFailed;
    default:
        return colours::heading;
    }
}

QString BatchDeleteOrderInfo::displayNumber() const
{
    return serviceTimes.isEmpty() ? orderPayForKey
                                  : orderPayForKey + QLatin1Char('-') + serviceTimes;
}

QString BatchDeleteOrderInfo::customers() const
{
    return mname.isEmpty() || wname.isEmpty() ? mname + wname : mname + QLatin1Char(' ') + wname;
}

bool BatchDeleteOrderInfo::hasChanged(const QVector<int> &indexes) const
{
    return std::any_of(indexes.cbegin(), indexes.cend(), [this](int index) {
        return index >= 0 && index < files_.size() && files_.at(index).changed;
    });
}

bool BatchDeleteOrderInfo::hasFilesLeft() const
{
    return std::any_of(files_.cbegin(), files_.cend(), [](const BatchDeleteFileInfo &file) {
        return !file.isRemoved() && !file.kept;
    });
}

QVector<BatchDeleteFileInfo> BatchDeleteOrderInfo::unreportedFiles() const
{
    QVector<BatchDeleteFileInfo> files;
    std::copy_if(files_.cbegin(), files_.cend(), std::back_inserter(files),
                 [](const BatchDeleteFileInfo &file) {
                     return file.state == BatchDeleteFileInfo::NotReported;
                 });
    return files;
}

void BatchDeleteOrderInfo::setFiles(const QVector<BatchDeleteFileInfo> &files)
{
    files_ = files;
    succeeded_ = failed_ = unreported_ = 0;
    bytes_ = bytesDone_ = 0;
    for (const BatchDeleteFileInfo &file : files)
        count(file, 1);
}

void BatchDeleteOrderInfo::setFile(int index, const BatchDeleteFileInfo &file)
{
    if (index < 0 || index >= files_.size())
        return;
    count(files_.at(index), -1);
    count(file, 1);
    files_[index] = file;
}

void BatchDeleteOrderInfo::count(const BatchDeleteFileInfo &file, int by)
{
    if (file.state == BatchDeleteFileInfo::Deleted)
        succeeded_ += by;
    if (file.hasFailed())
        failed_ += by;
    bytes_ += by * file.size;
    if (file.state == BatchDeleteFileInfo::Deleted || file.hasFailed())
        bytesDone_ += by * file.size;
    if (file.state == BatchDeleteFileInfo::NotReported)
        unreported_ += by;
}
