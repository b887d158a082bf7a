#include "fileimport/window/importfiletablemodel.h"

#include "look/colours.h"

#include <QColor>

namespace {

QVariant stateText(const ImportFile &file)
{
    switch (file.state) {
    case ImportFile::Waiting:
        return QStringLiteral("等待导入");
    case ImportFile::Imported:
        return QStringLiteral("导入成功");
    case ImportFile::Failed:
        return file.message.isEmpty() ? QStringLiteral("导入失败") : file.message;
    default:
        return {};
    }
}

QVariant stateColour(qint32 state)
{
    switch (state) {
    case ImportFile::Waiting:
        return QColor(colours::muted);
    case ImportFile::Imported:
        return QColor(colours::success);
    case ImportFile::Failed:
        return QColor(colours::failure);
    default:
        return {};
    }
}

} // namespace

ImportFileTableModel::ImportFileTableModel(QObject *parent)
    : QAbstractTableModel(parent)
    , headers_{QStringLiteral("文件名"), QStringLiteral("导入状态"), QStringLiteral("操作"),
               QStringLiteral("导入路径")}
{
}

void ImportFileTableModel::setFiles(const QVector<ImportFile> &files)
{
    beginResetModel();
    files_ = files;
    endResetModel();
}

void ImportFileTableModel::clear()
{
    setFiles({});
}

void ImportFileTableModel::append(const ImportFile &file)
{
    beginInsertRows({}, files_.size(), files_.size());
    files_.append(file);
    endInsertRows();
}

void ImportFileTableModel::updateRow(int row, qint32 state, const QString &message)
{
    if (row < 0 || row >= files_.size())
        return;
    files_[row].state = state;
    files_[row].message = message;
    emit dataChanged(index(row, StateColumn), index(row, ActionColumn));
}

int ImportFileTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : files_.size();
}

int ImportFileTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : headers_.size();
}

QVariant ImportFileTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= files_.size())
        return {};
    const ImportFile &file = files_.at(index.row());
    switch (role) {
    case StateRole:
        return int(file.state);
    case Qt::DisplayRole:
        switch (index.column()) {
        case FileNameColumn:
            return file.fileName();
        case StateColumn:
            return stateText(file);
        case ActionColumn:
            return file.state == ImportFile::Failed ? QStringLiteral("retry") : QString();
        case TargetColumn:
            return file.targetFolder;
        default:
            return {};
        }
    case Qt::ToolTipRole:
        return index.column() == FileNameColumn ? QVariant(file.sourcePath) : QVariant();
    case Qt::TextAlignmentRole:
        if (index.column() == StateColumn || index.column() == ActionColumn)
            return int(Qt::AlignHCenter | Qt::AlignVCenter);
        return {};
    case Qt::ForegroundRole:
        return index.column() == StateColumn ? stateColour(file.state) : QVariant();
    default:
        return {};
    }
}

QVariant ImportFileTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return headers_.value(section);
}
