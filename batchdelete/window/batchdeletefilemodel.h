#pragma once

#include "batchdelete/rules/batchdeleterecords.h"

#include <QAbstractTableModel>
#include <QVector>

/// The files of the order shown, one a row. A row is the file's position in the order's list.
class BatchDeleteFileModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { FolderColumn, SizeColumn, StateColumn, PathColumn, ColumnCount };
    enum Role {
        ReasonRole = Qt::UserRole, ///< why the file is in its state; for any column
        RetryRole,                 ///< what can be done about it, as a text; empty for nothing
    };

    using QAbstractTableModel::QAbstractTableModel;

    void setFiles(const QVector<BatchDeleteFileInfo> &files);
    const QVector<BatchDeleteFileInfo> &files() const { return files_; }
    /// Rows out of range are ignored.
    void setFile(int row, const BatchDeleteFileInfo &file);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QVector<BatchDeleteFileInfo> files_;
};
