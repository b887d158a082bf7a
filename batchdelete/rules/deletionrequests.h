#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "net/orderqueries.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QVector>

/// The requests of batch deletion: bodies from values, records from replies. Pure functions.
namespace deletionrequests {

inline const QString announceAction = QStringLiteral("&m=order&a=delete_pic_before");
inline const QString reportAction = QStringLiteral("&m=order&a=delete_pic_after");

using FoundOrders = orderqueries::FoundOrders<BatchDeleteOrderInfo>;

/// Reads a reply to a search in \a branch.
FoundOrders readOrders(const QJsonObject &reply, const orderqueries::SearchedBranch &branch);

/// Which files are about to be deleted. Takes a while for an order of many files.
QByteArray announceBody(const orderqueries::Identity &identity, const QString &orderPhotoId,
                        const QVector<BatchDeleteFileInfo> &files);
/// That one file is gone.
QByteArray reportBody(const orderqueries::Identity &identity, const QString &orderPhotoId,
                      const BatchDeleteFileInfo &file);

} // namespace deletionrequests
