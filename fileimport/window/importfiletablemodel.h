#pragma once

#include "fileimport/rules/importrecords.h"
#include "marks/rules/filemark.h"
#include "records/recordtable.h"

#include <QHash>
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
    /// A marks::Mark as an integer, for any column.
    static constexpr int MarkRole = Qt::UserRole + 1;

    explicit ImportFileTableModel(QObject *parent = nullptr);

    void setFiles(const QVector<ImportFile> &files) { reset(files); }
    void clear() { reset({}); }
    void append(const ImportFile &file);
    const QVector<ImportFile> &files() const { return records_; }
    /// By source; files without one have none.
    void setMarks(const QHash<QString, marks::Mark> &fileMarks);
    /// Rows out of range are ignored.
    void updateRow(int row, qint32 state, const QString &message);

private:
    QVariant other(const ImportFile &file, int column, int role) const override;

    QHash<QString, marks::Mark> marks_;
};
