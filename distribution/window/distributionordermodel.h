#pragma once

#include "distribution/rules/orderdata.h"
#include "records/ordertable.h"

#include <QSet>
#include <QVector>

/// A row of the distribution window's list.
struct TickedOrder
{
    const OrderData &order;
    bool ticked = false;
};

/// The distribution window's list of orders, each with a tick.
class DistributionOrderModel : public OrderTable<OrderData, TickedOrder>
{
    Q_OBJECT

public:
    enum Column {
        TickColumn,
        NumberColumn,
        ManColumn,
        WomanColumn,
        PhotographerColumn,
        PackageColumn,
        ShotDateColumn,
        RetouchedColumn,
        MakeUpColumn,
        ConsultantColumn,
        SelectionDateColumn,
        SelectedAtColumn,
        ManPhoneColumn,
        WomanPhoneColumn,
        PriceColumn,
        ColumnCount
    };

    explicit DistributionOrderModel(QObject *parent = nullptr);

    /// Nothing is ticked afterwards.
    void setOrders(const QVector<OrderData> &orders);

    bool isTicked(int row) const;
    void setTicked(int row, bool ticked);
    void setAllTicked(bool ticked);
    int tickedCount() const { return ticked_.size(); }

signals:
    void tickedChanged(int row, bool ticked);

private:
    TickedOrder shown(int row) const override;
    QVariant other(const TickedOrder &row, int column, int role) const override;

    QSet<int> ticked_; ///< rows
};
