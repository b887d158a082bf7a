#include "photoimport/imported/tfphotolistmodel.h"

#include "platform/pathform.h"

#include <QSet>

namespace {

constexpr int thumbnailCacheKb = 96 * 1024;

} // namespace

QVector<PanelPhoto> photoRows(const PhotoOrder &order, PhotoMode photoMode)
{
    QHash<QString, int> byName;
    QVector<PanelPhoto> photos;
    const QVector<orderqueries::OrderPhoto> &known = order.imported(photoMode);
    const QVector<SourceFile> &files = order.files(photoMode);
    for (int index = 0; index < files.size(); ++index) {
        const SourceFile &file = files.at(index);
        if (!known.isEmpty())
            byName.insert(file.name.toCaseFolded(), index);
        photos.append({file.name, file.path, {}, index, file});
    }
    for (const orderqueries::OrderPhoto &entry : known) {
        const QString key = entry.imgName.toCaseFolded();
        const int row = byName.value(key, -1);
        if (row >= 0) {
            photos[row].serviceId = entry.id;
            continue;
        }
        byName.insert(key, photos.size());
        photos.append({entry.imgName, platform::toLocalPath(entry.localPath), entry.id, -1, {}});
    }
    return photos;
}

tfphotolistmodel::tfphotolistmodel(QObject *parent)
    : QAbstractListModel(parent), thumbnails_(thumbnailCacheKb)
{
}

void tfphotolistmodel::show(const PhotoOrder *order, PhotoMode photoMode)
{
    beginResetModel();
    photos_ = order ? photoRows(*order, photoMode) : QVector<PanelPhoto>();
    files_ = order ? order->files(photoMode).size() : 0;
    fillRows();
    endResetModel();
}

void tfphotolistmodel::fillRows()
{
    rows_.clear();
    paths_.clear();
    for (int position = 0; position < photos_.size(); ++position) {
        const QString &path = photos_.at(position).path;
        const bool isMarked = position < files_ && marks_.value(path) == filter_;
        if (filter_ != marks::Mark::None && !isMarked)
            continue;
        paths_.insert(path, rows_.size());
        rows_.append(position);
    }
}

void tfphotolistmodel::setMarks(const QHash<QString, marks::Mark> &fileMarks)
{
    if (fileMarks == marks_)
        return;
    if (filter_ != marks::Mark::None) {
        beginResetModel();
        marks_ = fileMarks;
        fillRows();
        endResetModel();
        return;
    }
    marks_ = fileMarks;
    if (!rows_.isEmpty())
        emit dataChanged(index(0), index(rows_.size() - 1), {MarkRole});
}

void tfphotolistmodel::setFilter(marks::Mark mark)
{
    if (mark == filter_)
        return;
    beginResetModel();
    filter_ = mark;
    fillRows();
    endResetModel();
}

void tfphotolistmodel::updateFile(int fileIndex, const SourceFile &file)
{
    if (fileIndex < 0 || fileIndex >= files_ || photos_.at(fileIndex).path != file.path)
        return;
    photos_[fileIndex].file = file;
    const int row = paths_.value(file.path, -1);
    if (row >= 0)
        emit dataChanged(index(row), index(row));
}

QStringList tfphotolistmodel::wantedThumbnails(int firstRow, int lastRow) const
{
    QStringList paths;
    for (int row = firstRow; row <= lastRow && hasRow(row); ++row) {
        const QString &path = photo(row).path;
        if (!path.isEmpty() && !thumbnails_.contains(path))
            paths.append(path);
    }
    return paths;
}

void tfphotolistmodel::setThumbnail(const QString &path, const QImage &thumbnail)
{
    const int kilobytes = 1 + int(thumbnail.sizeInBytes() / 1024);
    thumbnails_.insert(path, new QImage(thumbnail), kilobytes);
    const int row = paths_.value(path, -1);
    if (row >= 0)
        emit dataChanged(index(row), index(row), {ThumbnailRole, NoThumbnailRole});
}

int tfphotolistmodel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rows_.size();
}

QVariant tfphotolistmodel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !hasRow(index.row()))
        return {};
    const PanelPhoto &photo = this->photo(index.row());
    const QImage *thumbnail = thumbnails_.object(photo.path);
    switch (role) {
    case NameRole:
        return photo.name;
    case ThumbnailRole:
        return thumbnail ? *thumbnail : QImage();
    case NoThumbnailRole:
        return photo.path.isEmpty() || (thumbnail && thumbnail->isNull());
    case PhotoRole:
        return QVariant::fromValue(photo);
    case MarkRole:
        return int(photo.fileIndex < 0 ? marks::Mark::None : marks_.value(photo.path));
    case Qt::ToolTipRole: {
        QString tip = photo.path.isEmpty() ? photo.name : photo.path;
        if (!photo.file.failureText().isEmpty())
            tip += QLatin1Char('\n') + photo.file.failureText();
        const QStringList reasons = photo.file.failureReasons();
        if (!reasons.isEmpty())
            tip += QStringLiteral("\n原因: ") + reasons.join(QStringLiteral("；"));
        if (photo.file.hasImpossible())
            tip += QStringLiteral("\n没有小图，这类文件只导入原图");
        return tip;
    }
    default:
        return {};
    }
}
