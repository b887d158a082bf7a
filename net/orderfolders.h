#pragma once

#include "app/context/orderidentity.h"
#include "net/orderqueries.h"

#include <QJsonObject>
#include <QString>
#include <QVector>

/// Where the files of the orders lie that any tool has found since the start, so that what one
/// search leaves out is not taken for nobody's.
namespace orderfolders {

struct OrderFolder
{
    OrderIdentity order;
    QString orderPayForKey;
    QString serviceTimes;
    QString path; ///< in Windows form: the order's own, otherwise where an import puts its files
};

/// Those of a search reply; orders without a folder are left out. Pure, for any thread.
QVector<OrderFolder> read(const QJsonObject &reply, const orderqueries::SearchedBranch &branch);

/// From now on known; what was known of the same orders is forgotten. Interface thread.
void remember(const QVector<OrderFolder> &folders);
QVector<OrderFolder> known();

} // namespace orderfolders
