#pragma once

#include "net/orderqueries.h"
#include "thumbnails/photoentry.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QVector>

/// Asking the service for the photos of one order that the customers chose. Pure functions.
namespace chosenphotos {

inline const QString action = QStringLiteral("&m=order&a=orderphotodetail");

/// \a photoSet: the order's "order_photo_id".
QByteArray body(const QString &photoSet, const orderqueries::Identity &who);
/// In the order of the reply; members that are missing or of another type are empty.
QVector<PhotoEntry> read(const QJsonObject &reply);

} // namespace chosenphotos
