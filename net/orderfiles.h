#pragma once

#include "app/context/orderidentity.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// What lies in an order's folder and what the service lists of it, for all tools that look. Pure
/// functions.
namespace orderfiles {

// The folders below an order's import path.
inline const QString originalsFolder = QStringLiteral("原片");
inline const QString rawFolder = QStringLiteral("原始档");
inline const QString retouchedFolder = QStringLiteral("精修片");
inline const QString uprightFolder = QStringLiteral("all");
inline const QString trialVideoFolder = QStringLiteral("试拍视频");
inline const QString retouchedVideoFolder = QStringLiteral("精修视频");

/// What of the folder \a subFolder is announced to the service when the order is imported.
QStringList announcedPatterns(const QString &subFolder);
/// Whether the announcement of \a subFolder names the file \a name there.
bool isAnnounced(const QString &subFolder, const QString &name);

// The photos and raw files that the service has on its books as imported for an order.
inline const QString listAction = QStringLiteral("&m=order&a=getorder_pics");
QByteArray listBody(const QString &shopId, const QString &orderPhotoId, const QString &timestamp);
/// Whether \a reply answers an earlier request than that of \a timestamp. One that names none is
/// taken for an answer to this one.
bool isStale(const QJsonObject &reply, const QString &timestamp);

/// A file that the service lists.
struct ListedFile
{
    QString name;
    QString localPath; ///< in Windows form; empty when the service does not know
    QString id = {};   ///< the service's
};

/// Raw files first, then photos.
QVector<ListedFile> readList(const QJsonObject &reply);
/// What a reply to a search lists with \a order itself, videos among it; nothing when the order was
/// not found.
std::optional<QVector<ListedFile>> readWithOrder(const QJsonObject &reply,
                                                 const OrderIdentity &order);

} // namespace orderfiles
