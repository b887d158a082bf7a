#pragma once

#include "photoimport/orders/photoorder.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QSet>
#include <QString>
#include <QVector>

/// The orders of the photo import window; it owns the records. A row here is the order's position
/// in the list, which sorting in a view never changes.
class tforderlistmodel : public QAbstractTableModel
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
    enum Role {
        SortRole = Qt::UserRole, ///< numbers as numbers
        ProgressRole,            ///< share of the jobs reported, 0 to 1; -1 without files
    };

    explicit tforderlistmodel(QObject *parent = nullptr);

    /// Which files count: those of photos, or of one sort of videos (photorules::PhotoMode).
    void setPhotoMode(int mode);
    int photoMode() const { return photoMode_; }

    void setOrders(const QVector<PhotoOrder> &orders);
    const QVector<PhotoOrder> &orders() const { return orders_; }
    bool hasRow(int row) const { return row >= 0 && row < orders_.size(); }
    const PhotoOrder &order(int row) const { return orders_.at(row); }
    /// The files of the present mode.
    const QVector<SourceFile> &files(int row) const { return orders_.at(row).files(photoMode_); }
    /// Position of the order; -1 when it is not listed.
    int rowOf(const OrderIdentity &order) const { return rows_.value(order, -1); }

    void addFiles(int row, const QVector<SourceFile> &files);
    /// \a indexes: positions among the files of the present mode.
    void removeFiles(int row, const QVector<int> &indexes);
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

    /// The result of a job, and what the service says of a file. Both find the file by its order
    /// and source path, return its position among the files (-1 when it is not there any more), and
    /// are announced by flush() alone: an import reports many times a second.
    int applyResult(const OrderIdentity &orderId, const PhotoInfo &job, bool success,
                    const QString &message);
    int applyRegistration(const OrderIdentity &orderId, const PhotoInfo &job,
                          RegistrationState state, const QString &reason = QString());
    void flush();

    /// Over these orders.
    TransferProgress progressOf(const QSet<OrderIdentity> &orders) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    void announce(int row);
    SourceFile *fileOf(const OrderIdentity &orderId, const PhotoInfo &job, int *position);
    QVariant cell(const PhotoOrder &order, int column) const;

    QVector<PhotoOrder> orders_;
    QHash<OrderIdentity, int> rows_;
    QSet<int> stale_; ///< rows that flush() is to announce
    int photoMode_ = 0;
};
