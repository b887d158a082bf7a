#pragma once

#include "distribution/rules/designfilesplittypes.h"
#include "distribution/rules/orderdata.h"
#include "net/orderqueries.h"

#include <QByteArray>
#include <QVector>

class QJsonObject;

/// The requests of the distribution window: bodies from values, records from replies. Pure
/// functions.
namespace distributionrequests {

inline const QString detailAction = QStringLiteral("&m=order&a=orderphotodetail");
inline const QString downloadedAction = QStringLiteral("&m=order&a=download_success");

/// The action of a search.
QString orderListAction(ListMode mode);
/// \a searchType is the chooser's text; one that is not listed leaves the search type out.
QByteArray orderListBody(const QString &searchType, const QString &keyword,
                         const orderqueries::Identity &identity);
QByteArray detailBody(const OrderData &order, const orderqueries::Identity &identity);
QByteArray downloadedBody(const QString &imageId, const orderqueries::Identity &identity);

/// Address of the picture of an order's barcode.
QString barcodeUrl(const QString &orderNumber);

/// The text by which the chooser names a search type; empty for an index that it does not have.
QString searchTypeText(int type);
/// What is searched for: the text, or the date that the type looks at.
QString keywordOf(const orderqueries::OrderSearch &search);

using FoundOrders = orderqueries::FoundOrders<OrderData>;

/// Reads a reply to a search in \a branch.
FoundOrders readOrders(const QJsonObject &reply, const orderqueries::SearchedBranch &branch);

} // namespace distributionrequests
