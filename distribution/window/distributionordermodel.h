#pragma once

#include "distribution/rules/orderdata.h"

#include <QAbstractTableModel>
#include <QSet>
#include <QVector>

/// The distribution window's list of orders, one a row, each with a tick. It owns the records; a
/// row is the order's position in the list, which sorting in a view never changes.
class DistributionOrderModel : public QAbstractTableModel
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
    static constexpr int SortRole = Qt::UserRole; ///< numbers as numbers

    explicit DistributionOrderModel(QObject *parent = nullptr);

    /// Nothing is ticked afterwards.
    void setOrders(const QVector<OrderData> &orders);
    bool hasRow(int row) const { return row >= 0 && row < orders_.size(); }
    const OrderData &order(int row) const { return orders_.at(row); }

    bool isTicked(int row) const;
    void setTicked(int row, bool ticked);
    void setAllTicked(bool ticked);
    int tickedCount() const { return ticked_.size(); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

signals:
    void tickedChanged(int row, bool ticked);

private:
    QString text(const OrderData &order, int column) const;

    QVector<OrderData> orders_;
    QSet<int> ticked_; ///< rows
};
