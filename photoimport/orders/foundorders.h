#pragma once

#include "photoimport/orders/photoorder.h"

#include <QJsonObject>
#include <QVector>

/// What a search found, and the list of orders that comes of it and of the one before. Pure
/// functions.
namespace photoorders {

using FoundOrders = orderqueries::FoundOrders<PhotoOrder>;

/// Reads a reply to a search in \a branch; the orders are without files.
FoundOrders readOrders(const QJsonObject &reply, const orderqueries::SearchedBranch &branch);

/// The orders to list after a search: what was found, with the files chosen before; ahead of them
/// orders that were not found but have files that are not finished.
QVector<PhotoOrder> merged(const QVector<PhotoOrder> &before, const QVector<PhotoOrder> &found);

} // namespace photoorders
