#pragma once

#include "cardcheck/rules/soughtorders.h"
#include "records/ordertable.h"

/// The orders in which files can be sought.
class SoughtOrderModel : public OrderTable<soughtorders::Order>
{
    Q_OBJECT

public:
    enum Column { NumberColumn, CustomersColumn, DateColumn, FolderColumn, ColumnCount };

    explicit SoughtOrderModel(QObject *parent = nullptr);

    void setOrders(const QVector<soughtorders::Order> &orders) { reset(orders); }
};
