#pragma once

#include "fileimport/rules/importrecords.h"
#include "records/recordtable.h"

#include <QString>
#include <QVector>

/// The files of the order shown, one a row, with their state.
class ImportFileTableModel : public RecordTable<ImportFile>
{
    Q_OBJECT

public:
    enum Column { FileNameColumn, StateColumn, ActionColumn, TargetColumn, ColumnCount };
    /// The file's state as an integer, for any column.
    static constexpr int StateRole = Qt::UserRole;

    explicit ImportFileTableModel(QObject *parent = nullptr);

    void setFiles(const QVector<ImportFile> &files) { reset(files); }
    void clear() { reset({}); }
    void append(const ImportFile &file);
    const QVector<ImportFile> &files() const { return records_; }
    /// Rows out of range are ignored.
    void updateRow(int row, qint32 state, const QString &message);

private:
    QVariant other(const ImportFile &file, int column, int role) const override;
};
