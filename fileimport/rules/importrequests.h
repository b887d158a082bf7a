#pragma once

#include "fileimport/rules/importrecords.h"
#include "net/servicecall.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

/// The requests of the import window: bodies from values, records from replies. Pure functions.
namespace importrequests {

inline const QString batchAction = QStringLiteral("&m=order&a=savepicpath_batch");
inline const QString orderPathAction = QStringLiteral("&m=order&a=saveorderphotopath");
inline const QString photoAction = QStringLiteral("&m=order&a=savepicpath");

/// A file as it lies in an import folder.
struct AnnouncedFile
{
    QString name;
    qint64 size = 0; ///< bytes
};

/// What is on disk for an order, as it is announced to the service.
struct FolderContents
{
    QVector<AnnouncedFile> images;    ///< originals, or retouched photos
    QVector<AnnouncedFile> rawImages; ///< empty for retouched photos
};

/// What the service answers to an announcement.
struct BatchReply
{
    QStringList localImages;  ///< what was announced
    QStringList serverImages; ///< what the service found
    QStringList localRawImages;
    QStringList serverRawImages;
};

using FoundOrders = orderqueries::FoundOrders<ImportOrder>;

/// Reads a reply to a search in \a branch.
FoundOrders readOrders(const QJsonObject &reply, const orderqueries::SearchedBranch &branch);

QByteArray batchBody(ImportMode mode, const ImportOrder &order, const FolderContents &contents,
                     const orderqueries::Identity &identity);
QByteArray orderPathBody(const ImportOrder &order, const orderqueries::Identity &identity);
QByteArray photoBody(ImportMode mode, const ImportOrder &order, const ImportFile &file,
                     const orderqueries::Identity &identity);

BatchReply readBatchReply(const QJsonObject &reply);

/// What to ask after a registration that did not succeed.
QString resubmitQuestion(const ServiceReply &reply);

} // namespace importrequests
