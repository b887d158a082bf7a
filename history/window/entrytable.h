#pragma once

#include "ledger/ledgerrecords.h"
#include "records/recordtable.h"

#include <QVector>

/// What runs did for orders, one a row, the newest first.
class EntryTable : public RecordTable<ledger::Entry>
{
    Q_OBJECT

public:
    enum Column {
        TimeColumn,
        WorkColumn,
        OrderColumn,
        CustomersColumn,
        CountsColumn,
        SizeColumn,
        CardColumn,
        WhoColumn,
        EndingColumn,
        ColumnCount
    };

    explicit EntryTable(QObject *parent = nullptr);

    void setEntries(const QVector<ledger::Entry> &entries) { reset(entries); }
    void append(const QVector<ledger::Entry> &entries);
    const QVector<ledger::Entry> &entries() const { return records_; }
};
