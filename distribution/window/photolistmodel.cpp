#include "distribution/window/photolistmodel.h"

#include <QStringList>

PhotoListModel::PhotoListModel(QObject *parent) : QAbstractListModel(parent)
{
}

void PhotoListModel::setPhotos(const QVector<ListedPhoto> &photos)
{
    beginResetModel();
    photos_ = photos;
    endResetModel();
}

void PhotoListModel::setAllSelected(bool selected)
{
    if (photos_.isEmpty())
        return;
    for (ListedPhoto &photo : photos_)
        photo.selected = selected;
    emit dataChanged(index(0), index(photos_.size() - 1), {Qt::CheckStateRole});
    emit selectionChanged();
}

bool PhotoListModel::take(const QString &id, ListedPhoto *photo)
{
    for (int row = 0; row < photos_.size(); ++row) {
        if (photos_.at(row).id != id)
            continue;
        beginRemoveRows({}, row, row);
        *photo = photos_.takeAt(row);
        endRemoveRows();
        return true;
    }
    return false;
}

void PhotoListModel::append(const ListedPhoto &photo)
{
    beginInsertRows({}, photos_.size(), photos_.size());
    photos_.append(photo);
    endInsertRows();
}

QString PhotoListModel::summary() const
{
    QStringList entries;
    for (const ListedPhoto &photo : photos_) {
        entries.append(photo.name +
                       (photo.selected ? QStringLiteral(" true") : QStringLiteral(" false")));
    }
    return entries.join(QStringLiteral("---"));
}

int PhotoListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : photos_.size();
}

QVariant PhotoListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= photos_.size())
        return {};
    const ListedPhoto &photo = photos_.at(index.row());
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return photo.name;
    if (role == Qt::CheckStateRole)
        return photo.selected ? Qt::Checked : Qt::Unchecked;
    return {};
}

bool PhotoListModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || index.row() >= photos_.size() || role != Qt::CheckStateRole)
        return false;
    photos_[index.row()].selected = value.toInt() == Qt::Checked;
    emit dataChanged(index, index, {Qt::CheckStateRole});
    emit selectionChanged();
    return true;
}

Qt::ItemFlags PhotoListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable |
           Qt::ItemNeverHasChildren;
}
