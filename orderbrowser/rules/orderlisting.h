#pragma once

#include "app/context/orderidentity.h"
#include "net/orderfolders.h"
#include "net/orderqueries.h"
#include "orderbrowser/rules/orderfields.h"

#include <QJsonObject>
#include <QMetaType>
#include <QString>
#include <QVector>

/// One order as the browser knows it: whatever the reply said of it.
struct BrowsedOrder
{
    OrderIdentity identity;
    /// As they came, by their position in the listing's fields; fields behind the last are empty.
    QVector<QString> values;
};

/// What a search found. A plain value that threads may share.
struct OrderListing
{
    bool isList = false; ///< false: the reply carries no list at all
    int elements = 0;    ///< how many the service listed, usable or not
    int unreadable = 0;  ///< of those, how many are no orders
    QString openYpml;    ///< flags of the reply that the import tools keep, too
    QString delYp;
    /// orderfields::known(), and behind them the members that the program does not know.
    QVector<orderfields::OrderField> fields = orderfields::known();
    QVector<BrowsedOrder> orders;
    QVector<orderfolders::OrderFolder> folders; ///< where the files of its orders lie

    QString value(int order, int field) const { return orders.at(order).values.value(field); }
    int rowOf(const OrderIdentity &identity) const;
    /// What users search an order by: its number without that of the service.
    static QString searchNumber(const BrowsedOrder &order);
};
Q_DECLARE_METATYPE(OrderListing)

/// Reading search replies. Pure functions; large replies take their time.
namespace orderlistings {

/// More members of one listing that the program does not know are left out.
constexpr int mostOtherFields = 200;

/// Orders that repeat an earlier one are left out. Orders that nothing tells from each other stay.
OrderListing read(const QJsonObject &reply, const orderqueries::SearchedBranch &branch);
/// What several searches found, without what a later one repeats.
OrderListing merged(const QVector<OrderListing> &listings);

} // namespace orderlistings
