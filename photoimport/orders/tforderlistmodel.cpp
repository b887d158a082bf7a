#include "photoimport/orders/tforderlistmodel.h"

#include <algorithm>

namespace {

using Model = tforderlistmodel;
using Column = records::Column<PhotoOrderRow>;

template <auto part> QVariant from(const PhotoOrderRow &row)
{
    return records::from<part, QVariant>(row.order);
}

QVariant stateText(const PhotoOrderRow &row)
{
    return photoorders::stateText(row.order, row.photoMode);
}

QColor stateColour(const PhotoOrderRow &row)
{
    return photoorders::stateColour(row.order, row.photoMode);
}

QString refusalTip(const PhotoOrderRow &row)
{
    return row.order.folderRefusal.isEmpty()
               ? QString()
               : QStringLiteral("导片目录登记失败: ") + row.order.folderRefusal;
}

QVariant progress(const PhotoOrderRow &row)
{
    return photoorders::progressShare(row.order, row.photoMode);
}

QVariant progressText(const PhotoOrderRow &row)
{
    return photoorders::progressText(row.order, row.photoMode);
}

QColor progressColour(const PhotoOrderRow &row)
{
    return photoorders::progressColour(row.order, row.photoMode);
}

QVariant chosen(const PhotoOrderRow &row)
{
    const int files = row.order.summary(row.photoMode).files;
    return files > 0 ? QVariant(files) : QVariant(QString());
}

QVariant imported(const PhotoOrderRow &row)
{
    return row.order.imported(row.photoMode).size();
}

QVariant shotDateText(const PhotoOrderRow &row)
{
    return row.order.info.shotDateText;
}

QVariant shotDate(const PhotoOrderRow &row)
{
    const auto &date = row.order.info.shotDate;
    return date.year + date.month + date.day;
}

QVariant photographer(const PhotoOrderRow &row)
{
    return row.order.info.role1;
}

QVariant folder(const PhotoOrderRow &row)
{
    const QString folder = row.order.folder();
    return folder.isEmpty() ? QStringLiteral("未选择") : folder;
}

constexpr Column columns[] = {
    Column(Model::NumberColumn, u"订单号", from<&PhotoOrder::displayNumber>),
    Column(Model::CustomersColumn, u"客人", from<&PhotoOrder::customers>),
    Column(Model::StateColumn, u"状态", stateText).coloured(stateColour).withTip(refusalTip),
    Column(Model::ProgressColumn, u"进度", progressText).coloured(progressColour).sorted(progress),
    Column(Model::ChosenColumn, u"本次已选", chosen).centred(),
    Column(Model::ImportedColumn, u"已导", imported).centred(),
    Column(Model::ShotDateColumn, u"拍照日期", shotDateText).sorted(shotDate),
    Column(Model::PhotographerColumn, u"摄影师", photographer),
    Column(Model::PathColumn, u"导片路径", folder),
};

} // namespace

tforderlistmodel::tforderlistmodel(QObject *parent)
    : OrderTable(records::columnsOf<columns, ColumnCount>(), parent)
{
}

void tforderlistmodel::setPhotoMode(PhotoMode mode)
{
    if (mode == photoMode_)
        return;
    photoMode_ = mode;
    if (!records_.isEmpty())
        emit dataChanged(index(0, 0), index(records_.size() - 1, ColumnCount - 1));
}

void tforderlistmodel::setOrders(QVector<PhotoOrder> orders)
{
    stale_.clear();
    for (PhotoOrder &order : orders)
        order.resummarise();
    reset(orders);
}

void tforderlistmodel::change(int row, const std::function<void(PhotoOrder &order)> &edit)
{
    stale_.remove(row);
    OrderTable::change(row, [&edit](PhotoOrder &order) {
        edit(order);
        order.resummarise();
    });
}

void tforderlistmodel::removeFiles(int row, const QVector<int> &indexes)
{
    change(row, [&](PhotoOrder &order) {
        QVector<SourceFile> &files = order.files(photoMode_);
        QVector<SourceFile> kept;
        const QSet<int> removed(indexes.cbegin(), indexes.cend());
        for (int index = 0; index < files.size(); ++index) {
            if (!removed.contains(index))
                kept.append(files.at(index));
        }
        files = kept;
    });
}

void tforderlistmodel::setFiles(int row, const QVector<SourceFile> &files)
{
    change(row, [&](PhotoOrder &order) { order.files(photoMode_) = files; });
}

void tforderlistmodel::setRun(int row, PhotoOrder::Run run)
{
    if (hasRow(row) && order(row).run != run)
        change(row, [run](PhotoOrder &order) { order.run = run; });
}

void tforderlistmodel::setFolderRefusal(int row, const QString &reason)
{
    change(row, [&reason](PhotoOrder &order) { order.folderRefusal = reason; });
}

void tforderlistmodel::forgetDeleted(int row, const QStringList &ids, const QStringList &names)
{
    change(row, [&](PhotoOrder &order) {
        for (auto &photos : order.importedByMode) {
            const auto gone =
                std::remove_if(photos.begin(), photos.end(),
                               [&ids](const auto &photo) { return ids.contains(photo.id); });
            photos.erase(gone, photos.end());
        }
        QVector<SourceFile> &files = order.files(photoMode_);
        const auto gone =
            std::remove_if(files.begin(), files.end(), [&names](const SourceFile &file) {
                return file.isComplete() && names.contains(file.name, Qt::CaseInsensitive);
            });
        files.erase(gone, files.end());
    });
}

void tforderlistmodel::refreshInfo(const QVector<PhotoOrder> &found)
{
    for (const PhotoOrder &renewed : found) {
        change(rowOf(renewed.identity()), [&renewed](PhotoOrder &order) {
            order.info = renewed.info;
            order.importedByMode = renewed.importedByMode;
        });
    }
}

void tforderlistmodel::resetFailedJobs(int row, const QVector<int> &indexes)
{
    const QSet<int> wanted(indexes.cbegin(), indexes.cend());
    change(row, [&](PhotoOrder &order) {
        QVector<SourceFile> &files = order.files(photoMode_);
        for (int index = 0; index < files.size(); ++index) {
            // Most have not; looking must not copy what is shared with the panel.
            if (!files.at(index).hasFailed() || !(wanted.isEmpty() || wanted.contains(index)))
                continue;
            for (SourceJob &job : files[index].jobs) {
                if (job.state == JobState::Failed)
                    job = {job.kind};
            }
        }
    });
}

SourceFile *tforderlistmodel::fileOf(const OrderIdentity &orderId, const PhotoInfo &job,
                                     int *position)
{
    const int row = rowOf(orderId);
    *position = -1;
    if (row < 0)
        return nullptr;
    QVector<SourceFile> &files = records_[row].files(photoMode_);
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

int tforderlistmodel::applyFailure(const OrderIdentity &orderId, const PhotoInfo &job,
                                   const JobFailure &failure)
{
    int position = -1;
    SourceFile *file = fileOf(orderId, job, &position);
    if (!file)
        return -1;
    for (SourceJob &state : file->jobs) {
        if (state.kind == job.kind)
            state.failure = failure;
    }
    return position;
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
            state.report(success, message);
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
        change(row, [](PhotoOrder &) {});
}

/// Files are imported in their order: the first that is not done is in work.
static void tellCurrent(const PhotoOrder &order, PhotoMode mode, TransferProgress *progress)
{
    const QVector<SourceFile> &files = order.files(mode);
    const auto file = std::find_if(files.cbegin(), files.cend(), [](const SourceFile &each) {
        return each.countOf(JobState::Waiting) > 0;
    });
    progress->order = order.displayName();
    if (file != files.cend())
        progress->file = file->name;
}

TransferProgress tforderlistmodel::progressOf(const QSet<OrderIdentity> &orders) const
{
    TransferProgress progress;
    for (const OrderIdentity &order : orders) {
        const int row = rowOf(order);
        if (row < 0)
            continue;
        const FilesSummary &summary = records_.at(row).summary(photoMode_);
        progress.filesDone += summary.reported;
        progress.filesTotal += summary.files;
        progress.bytesDone += summary.bytesReported;
        progress.bytesTotal += summary.bytes;
        if (records_.at(row).run == PhotoOrder::Run::Active && progress.order.isEmpty())
            tellCurrent(records_.at(row), photoMode_, &progress);
    }
    return progress;
}

QVariant tforderlistmodel::other(const PhotoOrderRow &row, int column, int role) const
{
    Q_UNUSED(column)
    return role == ProgressRole ? progress(row) : QVariant();
}
