#pragma once

#include "orderbrowser/rules/fieldvalues.h"
#include "orderbrowser/rules/orderarrangement.h"
#include "orderbrowser/rules/orderlisting.h"

#include <QAbstractTableModel>
#include <QStringList>
#include <QVector>

/// The orders of a listing that are shown, in the columns of a view. Holds the listing; what stands
/// where is told from outside.
class OrderBrowserModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit OrderBrowserModel(QObject *parent = nullptr);

    /// \a rows are positions in \a listing.
    void setOrders(const OrderListing &listing, const QVector<int> &rows);
    /// Fields by key; those that the listing does not have are left out.
    void setColumns(const QStringList &keys);
    void setSorting(const QVector<OrderArrangement::Sorting> &sorting);
    void setDisplay(const fieldvalues::Display &display);

    const OrderListing &listing() const { return listing_; }
    const fieldvalues::Display &display() const { return display_; }
    const orderfields::OrderField &field(int column) const
    {
        return listing_.fields.at(columns_.at(column));
    }
    /// -1 when it is not shown.
    int columnOf(const QString &key) const;
    /// The order in a row, which exists.
    const BrowsedOrder &order(int row) const { return listing_.orders.at(rows_.at(row)); }
    /// Its position in the listing.
    int position(int row) const { return rows_.at(row); }
    const QVector<int> &positions() const { return rows_; }
    QString value(int row, int field) const { return listing_.value(rows_.at(row), field); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    void findColumns();
    QString heading(int column) const;

    OrderListing listing_;
    QVector<int> rows_;
    QStringList keys_;
    QVector<int> columns_; ///< positions in the listing's fields
    QVector<OrderArrangement::Sorting> sorting_;
    fieldvalues::Display display_;
};
