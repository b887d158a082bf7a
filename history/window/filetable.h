#pragma once

#include "history/rules/filerecord.h"
#include "records/recordtable.h"

/// The files of one entry of the history, one a row.
class FileTable : public RecordTable<FileRecord>
{
    Q_OBJECT

public:
    enum Column {
        NameColumn,
        StateColumn,
        ProofColumn,
        KindColumn,
        SizeColumn,
        TimeColumn,
        SourceColumn,
        TargetColumn,
        HashColumn,
        ColumnCount
    };

    explicit FileTable(QObject *parent = nullptr);

    void setFiles(const QVector<FileRecord> &files) { reset(files); }
    const QVector<FileRecord> &files() const { return records_; }
};
