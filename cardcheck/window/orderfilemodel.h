#pragma once

#include "cardcheck/rules/orderfilelist.h"
#include "records/recordtable.h"

/// The files of an order as folder, service and ledger know them.
class OrderFileModel : public RecordTable<orderfilelist::OrderFile>
{
    Q_OBJECT

public:
    enum Column {
        StateColumn,
        NameColumn,
        FolderColumn,
        ServiceColumn,
        LedgerColumn,
        SourceColumn,
        ColumnCount
    };

    explicit OrderFileModel(QObject *parent = nullptr);

    void setFiles(const QVector<orderfilelist::OrderFile> &files) { reset(files); }
};
