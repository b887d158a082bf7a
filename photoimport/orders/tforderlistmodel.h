#pragma once

#include "photoimport/orders/photoorder.h"
#include "records/ordertable.h"

#include <QSet>
#include <QString>
#include <QVector>

/// A row of the photo import's list: what the present mode shows of an order.
struct PhotoOrderRow
{
    const PhotoOrder &order;
    PhotoMode photoMode = PhotoMode::Photos;
};

/// The orders of the photo import window.
class tforderlistmodel : public OrderTable<PhotoOrder, PhotoOrderRow>
{
    Q_OBJECT

public:
    enum Column {
        NumberColumn,
        CustomersColumn,
        StateColumn,
        ProgressColumn,
        ChosenColumn,
        ImportedColumn,
        ShotDateColumn,
        PhotographerColumn,
        PathColumn,
        ColumnCount
    };
    /// photoorders::progressShare(). For any column.
    static constexpr int ProgressRole = Qt::UserRole;

    explicit tforderlistmodel(QObject *parent = nullptr);

    /// Which files count: those of photos, or of one sort of videos (PhotoMode).
    void setPhotoMode(PhotoMode mode);
    PhotoMode photoMode() const { return photoMode_; }

    void setOrders(QVector<PhotoOrder> orders);
    /// The files of the present mode.
    const QVector<SourceFile> &files(int row) const { return order(row).files(photoMode_); }

    /// \a indexes: positions among the files of the present mode.
    void removeFiles(int row, const QVector<int> &indexes);
    /// The files of the present mode are these now.
    void setFiles(int row, const QVector<SourceFile> &files);
    void setRun(int row, PhotoOrder::Run run);
    void setFolderRefusal(int row, const QString &reason);
    /// The service has no photos with these \a ids and \a names any more: neither these nor the
    /// files that they were imported from are listed then. A file that is still to be imported is
    /// another photo, whatever its name.
    void forgetDeleted(int row, const QStringList &ids, const QStringList &names);
    /// What the service says now of listed orders; files and states stay.
    void refreshInfo(const QVector<PhotoOrder> &found);

    /// Puts failed jobs of the files back to waiting; of all files when \a indexes is empty.
    void resetFailedJobs(int row, const QVector<int> &indexes);

    /// Why a job is about to be reported as failed, the result of a job, and what the service says
    /// of a file. All find the file by its order
    /// and source path, return its position among the files (-1 when it is not there any more), and
    /// are announced by flush() alone: an import reports many times a second.
    int applyFailure(const OrderIdentity &orderId, const PhotoInfo &job, const JobFailure &failure);
    int applyResult(const OrderIdentity &orderId, const PhotoInfo &job, bool success,
                    const QString &message);
    int applyRegistration(const OrderIdentity &orderId, const PhotoInfo &job,
                          RegistrationState state, const QString &reason = QString());
    void flush();

    /// Over these orders.
    TransferProgress progressOf(const QSet<OrderIdentity> &orders) const;

private:
    PhotoOrderRow shown(int row) const override { return {order(row), photoMode_}; }
    QVariant other(const PhotoOrderRow &row, int column, int role) const override;
    void change(int row, const std::function<void(PhotoOrder &order)> &edit);
    SourceFile *fileOf(const OrderIdentity &orderId, const PhotoInfo &job, int *position);

    QSet<int> stale_; ///< rows that flush() is to announce
    PhotoMode photoMode_ = PhotoMode::Photos;
};
