#include "batchdelete/window/batchdeletefilemodel.h"

#include "files/transferprogress.h"

#include <QColor>

namespace {

QString retryText(const BatchDeleteFileInfo &file)
{
    if (file.state == BatchDeleteFileInfo::NotReported)
        return QStringLiteral("重新提交");
    return file.mayRetryDelete() ? QStringLiteral("重新删除") : QString();
}

QString shownText(const BatchDeleteFileInfo &file, int column)
{
    switch (column) {
    case BatchDeleteFileModel::FolderColumn:
        return file.folder();
    case BatchDeleteFileModel::SizeColumn:
        return dataSizeText(double(file.size));
    case BatchDeleteFileModel::StateColumn:
        return deletionStateText(file.state);
    case BatchDeleteFileModel::PathColumn:
        return file.fullPath();
    default:
        return {};
    }
}

} // namespace

void BatchDeleteFileModel::setFiles(const QVector<BatchDeleteFileInfo> &files)
{
    beginResetModel();
    files_ = files;
    endResetModel();
}

void BatchDeleteFileModel::setFile(int row, const BatchDeleteFileInfo &file)
{
    if (row < 0 || row >= files_.size())
        return;
    files_[row] = file;
    emit dataChanged(index(row, StateColumn), index(row, StateColumn));
}

int BatchDeleteFileModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : files_.size();
}

int BatchDeleteFileModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant BatchDeleteFileModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= files_.size())
        return {};
    const BatchDeleteFileInfo &file = files_.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return shownText(file, index.column());
    case Qt::ForegroundRole:
        return index.column() == StateColumn ? QVariant(QColor(deletionStateColour(file.state)))
                                             : QVariant();
    case Qt::ToolTipRole:
        if (index.column() == StateColumn && !file.reason.isEmpty())
            return file.reason;
        return {};
    case Qt::TextAlignmentRole:
        return index.column() == SizeColumn ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter))
                                            : QVariant();
    case ReasonRole:
        return file.reason;
    case RetryRole:
        return retryText(file);
    default:
        return {};
    }
}

QVariant BatchDeleteFileModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList headers{QStringLiteral("目录"), QStringLiteral("文件大小"),
                                     QStringLiteral("状态"), QStringLiteral("文件路径")};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return headers.value(section);
}
