#pragma once

#include "batchdelete/batchdeleterecords.h"
#include "net/orderqueries.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QVector>

/// The requests of batch deletion: bodies from values, records from replies. Pure functions.
namespace deletionrequests {

inline const QString announceAction = QStringLiteral("&m=order&a=delete_pic_before");
inline const QString reportAction = QStringLiteral("&m=order&a=delete_pic_after");

/// What a search found.
struct OrderList
{
    bool isList = false; ///< false: the reply carries no list at all
    int elements = 0;    ///< how many the service listed, usable or not
    QVector<BatchDeleteOrderInfo> orders;
    /// Those that nothing tells from the others: what lies in their folders is theirs all the same.
    QVector<BatchDeleteOrderInfo> unlisted;
};

/// Reads a search reply. Elements without an id are unlisted, as are repetitions of one.
OrderList readOrders(const QJsonObject &reply);

/// Which files are about to be deleted. Takes a while for an order of many files.
QByteArray announceBody(const orderqueries::Identity &identity, const QString &orderPhotoId,
                        const QVector<BatchDeleteFileInfo> &files);
/// That one file is gone.
QByteArray reportBody(const orderqueries::Identity &identity, const QString &orderPhotoId,
                      const BatchDeleteFileInfo &file);

} // namespace deletionrequests
