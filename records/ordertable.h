#pragma once

#include "app/context/orderidentity.h"
#include "records/recordtable.h"

#include <QHash>

/// A table of orders, which are found by what tells them from all others.
template <class Order, class Shown = const Order &>
class OrderTable : public RecordTable<Order, Shown>
{
public:
    const QVector<Order> &orders() const { return this->records_; }
    const Order &order(int row) const { return this->records_.at(row); }
    /// Position of the order; -1 when it is not listed.
    int rowOf(const OrderIdentity &order) const { return rows_.value(order, -1); }

    /// The same by the order's photo set alone; an empty one is nobody's.
    int rowOfPhotoSet(const QString &orderPhotoId) const
    {
        for (auto it = rows_.cbegin(); it != rows_.cend(); ++it) {
            if (!orderPhotoId.isEmpty() && it.key().orderPhotoId == orderPhotoId)
                return it.value();
        }
        return -1;
    }

protected:
    using RecordTable<Order, Shown>::RecordTable;

    void reset(const QVector<Order> &orders)
    {
        rows_.clear();
        for (int row = 0; row < orders.size(); ++row)
            rows_.insert(orders.at(row).identity(), row);
        RecordTable<Order, Shown>::reset(orders);
    }

private:
    QHash<OrderIdentity, int> rows_;
};
