#pragma once

#include "app/context/orderidentity.h"
#include "thumbnails/photoentry.h"

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

struct ImportOrder;

/// The requests of the imported-photo view: bodies from values, records from replies. Pure
/// functions.
namespace originalrequests {

inline const QString deleteAction = QStringLiteral("&m=order&a=delete_pics");

/// The fields of an order as the view takes them: "id", "orderid", "order_photo_id",
/// "orderpayforkey", "servicetimes", "wname", "mname", "comboname", "shotdate", "role1name",
/// "shopid", "delyp", and where it is imported: "importpath" (empty when nothing says where) and
/// "importpublicpath".
using OrderMap = QMap<QString, QString>;

OrderMap orderMap(const ImportOrder &order);
OrderIdentity identityOf(const OrderMap &order);
/// The number users know the order by, with its service.
QString numberOf(const OrderMap &order);
/// What heads the view while it shows \a order.
QString title(const OrderMap &order);
/// Whether the user may delete the order's photos.
bool mayDelete(const OrderMap &order);

/// \a timestamp: milliseconds since the epoch, as text.
QByteArray listBody(const OrderMap &order, const QString &timestamp);
QByteArray deleteBody(const OrderMap &order, const QStringList &ids, const QString &timestamp);

/// Those among \a entries that the service can be told to delete: with an id that stays one id in
/// a list of them.
QVector<PhotoEntry> withId(const QVector<PhotoEntry> &entries);

/// Raw files first, as they are listed. Fields that are missing or of another type are empty.
QVector<PhotoEntry> readListing(const QJsonObject &reply);

} // namespace originalrequests
