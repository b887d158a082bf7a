#include "photoimport/orders/tforderlistmodel.h"

#include <QColor>

#include <algorithm>

tforderlistmodel::tforderlistmodel(QObject *parent) : QAbstractTableModel(parent)
{
}

void tforderlistmodel::setPhotoMode(int mode)
{
    if (mode == photoMode_)
        return;
    photoMode_ = mode;
    if (!orders_.isEmpty())
        emit dataChanged(index(0, 0), index(orders_.size() - 1, ColumnCount - 1));
}

void tforderlistmodel::setOrders(const QVector<PhotoOrder> &orders)
{
    beginResetModel();
    orders_ = orders;
    rows_.clear();
    stale_.clear();
    for (int row = 0; row < orders_.size(); ++row) {
        rows_.insert(orders_.at(row).identity(), row);
        orders_[row].resummarise();
    }
    endResetModel();
}

void tforderlistmodel::addFiles(int row, const QVector<SourceFile> &files)
{
    if (!hasRow(row))
        return;
    orders_[row].files(photoMode_) += files;
    announce(row);
}

void tforderlistmodel::removeFiles(int row, const QVector<int> &indexes)
{
    if (!hasRow(row))
        return;
    QVector<SourceFile> &files = orders_[row].files(photoMode_);
    QVector<SourceFile> kept;
    const QSet<int> removed(indexes.cbegin(), indexes.cend());
    for (int index = 0; index < files.size(); ++index) {
        if (!removed.contains(index))
            kept.append(files.at(index));
    }
    files = kept;
    announce(row);
}

void tforderlistmodel::setRun(int row, PhotoOrder::Run run)
{
    if (!hasRow(row) || orders_.at(row).run == run)
        return;
    orders_[row].run = run;
    announce(row);
}

void tforderlistmodel::setFolderRefusal(int row, const QString &reason)
{
    if (!hasRow(row))
        return;
    orders_[row].folderRefusal = reason;
    announce(row);
}

void tforderlistmodel::forgetDeleted(int row, const QStringList &ids, const QStringList &names)
{
    if (!hasRow(row))
        return;
    for (auto &photos : orders_[row].importedByMode) {
        const auto gone = std::remove_if(photos.begin(), photos.end(), [&ids](const auto &photo) {
            return ids.contains(photo.id);
        });
        photos.erase(gone, photos.end());
    }
    QVector<SourceFile> &files = orders_[row].files(photoMode_);
    const auto gone = std::remove_if(files.begin(), files.end(), [&names](const SourceFile &file) {
        return file.isComplete() && names.contains(file.name, Qt::CaseInsensitive);
    });
    files.erase(gone, files.end());
    announce(row);
}

void tforderlistmodel::refreshInfo(const QVector<PhotoOrder> &found)
{
    for (const PhotoOrder &renewed : found) {
        const int row = rowOf(renewed.identity());
        if (row < 0)
            continue;
        orders_[row].info = renewed.info;
        orders_[row].importedByMode = renewed.importedByMode;
        announce(row);
    }
}

void tforderlistmodel::resetFailedJobs(int row, const QVector<int> &indexes)
{
    if (!hasRow(row))
        return;
    const QSet<int> wanted(indexes.cbegin(), indexes.cend());
    QVector<SourceFile> &files = orders_[row].files(photoMode_);
    for (int index = 0; index < files.size(); ++index) {
        // Most have not; looking must not copy what is shared with the panel.
        if (!files.at(index).hasFailed() || !(wanted.isEmpty() || wanted.contains(index)))
            continue;
        for (SourceJob &job : files[index].jobs) {
            if (job.state == JobState::Failed)
                job = {job.kind, JobState::Waiting, {}};
        }
    }
    announce(row);
}

SourceFile *tforderlistmodel::fileOf(const OrderIdentity &orderId, const PhotoInfo &job,
                                     int *position)
{
    const int row = rowOf(orderId);
    *position = -1;
    if (row < 0)
        return nullptr;
    QVector<SourceFile> &files = orders_[row].files(photoMode_);
    int index = job.sourceIndex;
    if (index < 0 || index >= files.size() || files.at(index).path != job.sourcePath) {
        const auto found =
            std::find_if(files.cbegin(), files.cend(),
                         [&job](const SourceFile &file) { return file.path == job.sourcePath; });
        if (found == files.cend())
            return nullptr;
        index = int(found - files.cbegin());
    }
    *position = index;
    stale_.insert(row);
    return &files[index];
}

int tforderlistmodel::applyResult(const OrderIdentity &orderId, const PhotoInfo &job, bool success,
                                  const QString &message)
{
    int position = -1;
    SourceFile *file = fileOf(orderId, job, &position);
    if (!file)
        return -1;
    for (SourceJob &state : file->jobs) {
        if (state.kind == job.kind)
            state = {job.kind, success ? JobState::Done : JobState::Failed, message};
    }
    return position;
}

int tforderlistmodel::applyRegistration(const OrderIdentity &orderId, const PhotoInfo &job,
                                        RegistrationState state, const QString &reason)
{
    int position = -1;
    SourceFile *file = fileOf(orderId, job, &position);
    if (!file)
        return -1;
    file->registration = state;
    file->refusal = reason;
    return position;
}

void tforderlistmodel::flush()
{
    const QSet<int> rows = stale_;
    for (const int row : rows)
        announce(row);
}

void tforderlistmodel::announce(int row)
{
    stale_.remove(row);
    orders_[row].resummarise();
    emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

TransferProgress tforderlistmodel::progressOf(const QSet<OrderIdentity> &orders) const
{
    TransferProgress progress;
    for (const OrderIdentity &order : orders) {
        const int row = rowOf(order);
        if (row < 0)
            continue;
        const FilesSummary &summary = orders_.at(row).summary(photoMode_);
        progress.filesDone += summary.reported;
        progress.filesTotal += summary.files;
        progress.bytesDone += summary.bytesReported;
        progress.bytesTotal += summary.bytes;
    }
    return progress;
}

int tforderlistmodel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : orders_.size();
}

int tforderlistmodel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant tforderlistmodel::cell(const PhotoOrder &order, int column) const
{
    const FilesSummary &summary = order.summary(photoMode_);
    switch (column) {
    case NumberColumn:
        return order.displayNumber();
    case CustomersColumn:
        return order.customers();
    case ShotDateColumn:
        return order.info.shotDateText;
    case PhotographerColumn:
        return order.info.role1;
    case ImportedColumn:
        return order.imported(photoMode_).size();
    case ChosenColumn:
        return summary.files > 0 ? QVariant(summary.files) : QVariant(QString());
    case StateColumn:
        return photoorders::stateText(order, photoMode_);
    case PathColumn:
        return order.folder().isEmpty() ? QStringLiteral("未选择") : order.folder();
    default:
        return {};
    }
}

QVariant tforderlistmodel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !hasRow(index.row()))
        return {};
    const PhotoOrder &order = orders_.at(index.row());
    const FilesSummary &summary = order.summary(photoMode_);
    switch (role) {
    case SortRole:
        if (index.column() == ShotDateColumn) {
            return order.info.shotDate.year + order.info.shotDate.month + order.info.shotDate.day;
        }
        if (index.column() == ProgressColumn)
            return data(index, ProgressRole);
        return cell(order, index.column());
    case Qt::DisplayRole:
        return cell(order, index.column());
    case ProgressRole:
        if (summary.files == 0)
            return -1.0;
        return summary.bytes > 0 ? double(summary.bytesReported) / double(summary.bytes)
                                 : double(summary.reported) / double(summary.files);
    case Qt::ForegroundRole:
        if (index.column() == StateColumn)
            return QColor(photoorders::stateColour(order, photoMode_));
        return {};
    case Qt::TextAlignmentRole:
        return int((index.column() == ImportedColumn || index.column() == ChosenColumn
                        ? Qt::AlignHCenter
                        : Qt::AlignLeft) |
                   Qt::AlignVCenter);
    case Qt::ToolTipRole:
        if (index.column() == StateColumn && !order.folderRefusal.isEmpty())
            return QStringLiteral("导片目录登记失败: ") + order.folderRefusal;
        return {};
    default:
        return {};
    }
}

QVariant tforderlistmodel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList headers = {
        QStringLiteral("订单号"),   QStringLiteral("客人"),     QStringLiteral("状态"),
        QStringLiteral("进度"),     QStringLiteral("本次已选"), QStringLiteral("已导"),
        QStringLiteral("拍照日期"), QStringLiteral("摄影师"),   QStringLiteral("导片路径")};
    return headers.value(section);
}
