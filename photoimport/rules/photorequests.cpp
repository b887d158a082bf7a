#include "photoimport/rules/photorequests.h"

#include "files/paths.h"
#include "net/formbody.h"
#include "photoimport/rules/photorules.h"

namespace photorequests {

bool isRegistered(PhotoMode photoMode, const PhotoInfo &photo)
{
    return photoMode != PhotoMode::Photos || photo.kind == photorules::originalKind;
}

QString registrationAction(PhotoMode photoMode)
{
    return photoMode == PhotoMode::Photos ? photoAction : videoAction;
}

QByteArray registrationBody(PhotoMode photoMode, const QString &orderPhotoId, const QString &path,
                            qint64 size, const PhotoInfo &photo, const QString &shareHost,
                            const orderqueries::Identity &identity)
{
    FormBody body;
    body.add(QStringLiteral("order_photo_id"), orderPhotoId)
        .add(QStringLiteral("person_id"), identity.employeeId)
        .add(QStringLiteral("size"), QString::number(size))
        .add(QStringLiteral("ratio"), photo.targetSize)
        .add(QStringLiteral("path"), convertPathForService(path, shareHost));
    orderqueries::addIdentity(body, identity);
    if (photoMode != PhotoMode::Photos) {
        const bool trial = photoMode == PhotoMode::TrialVideos;
        body.add(QStringLiteral("type"), trial ? QStringLiteral("2") : QStringLiteral("3"))
            .add(QStringLiteral("photonames"), photo.fileName);
    }
    return body.bytes();
}

QByteArray orderPathBody(const OrderInfo &order, const QString &shareHost,
                         const orderqueries::Identity &identity)
{
    FormBody body;
    body.add(QStringLiteral("order_photo_id"), order.orderPhotoId)
        .add(QStringLiteral("person_id"), identity.employeeId)
        .add(QStringLiteral("path"),
             convertPathForService(photorules::importFolderOf(order), shareHost));
    return orderqueries::addIdentity(body, identity).bytes();
}

QString deletionAction(PhotoMode photoMode)
{
    switch (photoMode) {
    case PhotoMode::TrialVideos:
    case PhotoMode::RetouchedVideos:
        return deleteVideosAction;
    case PhotoMode::Photos:
    case PhotoMode::Unknown:
        return deletePhotosAction;
    }
    Q_UNREACHABLE();
}

QByteArray deletionBody(const QString &orderPhotoId, const QStringList &ids,
                        const orderqueries::Identity &identity)
{
    FormBody body;
    body.add(QStringLiteral("order_photo_id"), orderPhotoId)
        .add(QStringLiteral("ids"), ids.join(QLatin1Char(',')));
    return orderqueries::addIdentity(body, identity).bytes();
}

} // namespace photorequests
