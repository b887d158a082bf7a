#include "photoimport/run/photoregistrar.h"

#include "app/context/accountcontext.h"
#include "files/paths.h"
#include "photoimport/rules/photorequests.h"
#include "photoimport/rules/photorules.h"
#include "platform/pathform.h"
#include "tasks/background.h"

#include <QDebug>
#include <QFileInfo>

namespace {

/// What to tell the user; nothing on success.
QString refusalOf(const ServiceReply &reply)
{
    switch (reply.outcome) {
    case ServiceReply::Outcome::Success:
        return {};
    case ServiceReply::Outcome::Refused:
        return reply.message.isEmpty() ? QStringLiteral("服务器拒绝登记") : reply.message;
    case ServiceReply::Outcome::CertificateRefused:
        return QStringLiteral("服务器证书不受信任: %1").arg(reply.message);
    case ServiceReply::Outcome::NoAnswer:
        break;
    }
    return QStringLiteral("服务器没有响应");
}

/// Bytes of the file at \a wirePath; -1 when there is none. Touches the disk.
qint64 sizeOf(const QString &wirePath)
{
    const QFileInfo file(platform::toLocalPath(wirePath));
    return file.isFile() ? file.size() : -1;
}

} // namespace

PhotoRegistrar::PhotoRegistrar(QObject *parent) : QObject(parent), queue_(requestsAtOnce)
{
    connect(&queue_, &RequestQueue::idle, this, &PhotoRegistrar::idle);
}

void PhotoRegistrar::upImportPhotoInfo(const OrderInfo &order, int photoIndex, PhotoMode photoMode,
                                       const orderqueries::Identity &identity)
{
    const PhotoInfo photo = order.photos.value(photoIndex);
    if (!photorequests::isRegistered(photoMode, photo))
        return;
    const QString folder = photorules::importFolderOf(order);
    const QString path = photorules::outputPathOf(folder, photo);
    const QString host = shareHostOf(folder, AccountContext::baseUrl);
    const OrderIdentity orderId = order.identity();
    const QString photoSetId = order.orderPhotoId;

    const auto finished = [this, orderId, photo](const QString &refusal) {
        if (refusal.isEmpty())
            emit photoRegistered(orderId, photo);
        else
            emit photoRefused(orderId, photo, refusal);
    };
    queue_.add([=](QObject *scope, const RequestQueue::Ended &ended) {
        const auto announce = [=](qint64 size) {
            if (size < 0) {
                qDebug().noquote() << QStringLiteral("导入照片路径失败，不执行upImportPhotoInfo");
                if (ended())
                    finished(QStringLiteral("导入后的文件不存在: %1").arg(path));
                return;
            }
            callService(scope, photorequests::registrationAction(photoMode),
                        photorequests::registrationBody(photoMode, photoSetId, path, size, photo,
                                                        host, identity),
                        [=](const ServiceReply &reply) {
                            if (ended())
                                finished(refusalOf(reply));
                        });
        };
        onDisk(
            scope, path, [path] { return sizeOf(path); }, announce);
    });
}

void PhotoRegistrar::upImportOrderData(const OrderInfo &order,
                                       const orderqueries::Identity &identity)
{
    const QString host = shareHostOf(photorules::importFolderOf(order), AccountContext::baseUrl);
    const QByteArray body = photorequests::orderPathBody(order, host, identity);
    queue_.add(
        [this, body, orderId = order.identity()](QObject *scope, const RequestQueue::Ended &ended) {
            callService(scope, photorequests::orderPathAction, body,
                        [this, ended, orderId](const ServiceReply &reply) {
                            if (!ended())
                                return;
                            const QString refusal = refusalOf(reply);
                            if (refusal.isEmpty())
                                emit orderRegistered(orderId);
                            else
                                emit orderRefused(orderId, refusal);
                        });
        });
}
