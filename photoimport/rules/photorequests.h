#pragma once

#include "photoimport/rules/photoimportrecords.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The requests of the photo import. Pure functions but for the log lines of the path conversion.
/// For \a photoMode see PhotoMode; \a shareHost as for convertPathForService().
namespace photorequests {

inline const QString photoAction = QStringLiteral("&m=order&a=savepicpath");
inline const QString videoAction = QStringLiteral("&m=order&a=savepicpathmv");
inline const QString orderPathAction = QStringLiteral("&m=order&a=saveorderphotopath");
inline const QString deletePhotosAction = QStringLiteral("&m=order&a=delimages");
inline const QString deleteVideosAction = QStringLiteral("&m=order&a=delmv");

/// Whether the service is told of a job's result: of originals and videos, not of size variants.
bool isRegistered(PhotoMode photoMode, const PhotoInfo &photo);

QString registrationAction(PhotoMode photoMode);
/// Tells where one imported file of \a size bytes lies.
QByteArray registrationBody(PhotoMode photoMode, const QString &orderPhotoId, const QString &path,
                            qint64 size, const PhotoInfo &photo, const QString &shareHost,
                            const orderqueries::Identity &identity);

/// Tells where the photos of an order lie.
QByteArray orderPathBody(const OrderInfo &order, const QString &shareHost,
                         const orderqueries::Identity &identity);

QString deletionAction(PhotoMode photoMode);
/// \a ids: the service's ids of the photos.
QByteArray deletionBody(const QString &orderPhotoId, const QStringList &ids,
                        const orderqueries::Identity &identity);

} // namespace photorequests
