#pragma once

#include "cardcheck/rules/places.h"
#include "net/orderqueries.h"

#include <QMetaType>

/// The orders in which files are sought, as a search lists them. Pure functions.
namespace soughtorders {

struct Order : orderqueries::OrderInfo
{
    QString folder; ///< wire form; empty when nothing says where it is imported

    /// The number users know the order by, with its service: "0012-1".
    QString displayNumber() const;
    QString customers() const;
    ledger::OrderKey key() const { return {identity(), displayNumber(), customers()}; }
};

using Found = orderqueries::FoundOrders<Order>;

Found read(const QJsonObject &reply, const orderqueries::SearchedBranch &branch);
/// \a first and what of \a more is not among them.
QVector<Order> joined(QVector<Order> first, const QVector<Order> &more);

} // namespace soughtorders
