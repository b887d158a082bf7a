#pragma once

#include "records/recordtable.h"
#include "runreport/runreport.h"

/// What a run did, an order a row.
class OrderReportModel : public RecordTable<OrderReport>
{
    Q_OBJECT

public:
    enum Column {
        NumberColumn,
        NameColumn,
        ChosenColumn,
        CopiedColumn,
        VerifiedColumn,
        ProofColumn,
        RegisteredColumn,
        UnregisteredColumn,
        UnannouncedColumn,
        FailedColumn,
        ColumnCount
    };

    explicit OrderReportModel(QObject *parent = nullptr);

    void setOrders(const QVector<OrderReport> &orders) { reset(orders); }
};
