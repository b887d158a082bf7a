#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "records/recordtable.h"

/// The files of the order shown, one a row. A row is the file's position in the order's list.
class BatchDeleteFileModel : public RecordTable<BatchDeleteFileInfo>
{
    Q_OBJECT

public:
    enum Column { FolderColumn, SizeColumn, StateColumn, PathColumn, ColumnCount };
    enum Role {
        ReasonRole = Qt::UserRole, ///< why the file is in its state; for any column
        RetryRole,                 ///< what can be done about it, as a text; empty for nothing
    };

    explicit BatchDeleteFileModel(QObject *parent = nullptr);

    void setFiles(const QVector<BatchDeleteFileInfo> &files) { reset(files); }
    const QVector<BatchDeleteFileInfo> &files() const { return records_; }
    /// Rows out of range are ignored.
    void setFile(int row, const BatchDeleteFileInfo &file);

private:
    QVariant other(const BatchDeleteFileInfo &file, int column, int role) const override;
};
