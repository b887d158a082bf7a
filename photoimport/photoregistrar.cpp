#include "photoimport/photoregistrar.h"

#include "app/context/accountcontext.h"
#include "files/paths.h"
#include "photoimport/photorequests.h"
#include "photoimport/photorules.h"
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

PhotoRegistrar::PhotoRegistrar(QObject *parent)
    : QObject(parent), scope_(std::make_unique<QObject>())
{
}

PhotoRegistrar::~PhotoRegistrar() = default;

void PhotoRegistrar::upImportPhotoInfo(const OrderInfo &order, int photoIndex, int photoMode,
                                       const orderqueries::Identity &identity)
{
    const PhotoInfo photo = order.photos.value(photoIndex);
    if (!photorequests::isRegistered(photoMode, photo))
        return;
    const QString folder = photorules::importFolderOf(order);
    const QString path = photorules::outputPathOf(folder, photo);
    const QString host = shareHostOf(folder, AccountContext::baseUrl);
    const QString orderId = order.id;
    const QString photoSetId = order.orderPhotoId;

    const auto finished = [this, orderId, photo](const QString &refusal) {
        if (refusal.isEmpty())
            emit photoRegistered(orderId, photo);
        else
            emit photoRefused(orderId, photo, refusal);
    };
    enqueue([=](const Ended &ended) {
        const auto announce = [=](qint64 size) {
            if (size < 0) {
                qDebug().noquote() << QStringLiteral("导入照片路径失败，不执行upImportPhotoInfo");
                if (ended())
                    finished(QStringLiteral("导入后的文件不存在: %1").arg(path));
                return;
            }
            callService(scope_.get(), photorequests::registrationAction(photoMode),
                        photorequests::registrationBody(photoMode, photoSetId, path, size, photo,
                                                        host, identity),
                        [=](const ServiceReply &reply) {
                            if (ended())
                                finished(refusalOf(reply));
                        });
        };
        inBackground(
            scope_.get(), [path] { return sizeOf(path); }, announce);
    });
}

void PhotoRegistrar::upImportOrderData(const OrderInfo &order,
                                       const orderqueries::Identity &identity)
{
    const QString host = shareHostOf(photorules::importFolderOf(order), AccountContext::baseUrl);
    const QByteArray body = photorequests::orderPathBody(order, host, identity);
    enqueue([this, body, orderId = order.id](const Ended &ended) {
        callService(scope_.get(), photorequests::orderPathAction, body,
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

void PhotoRegistrar::cancel()
{
    waiting_.clear();
    underWay_ = 0;
    busy_ = false;
    // What is under way belongs to the scope and dies with it; deleted later, since this may be
    // called from one of its answers.
    scope_.release()->deleteLater();
    scope_ = std::make_unique<QObject>();
}

void PhotoRegistrar::enqueue(const Request &request)
{
    busy_ = true;
    waiting_.append(request);
    sendWaiting();
}

void PhotoRegistrar::sendWaiting()
{
    while (underWay_ < requestsAtOnce && !waiting_.isEmpty()) {
        ++underWay_;
        waiting_.takeFirst()([this, scope = scope_.get()] {
            if (scope != scope_.get())
                return false;
            --underWay_;
            // Later, so that whoever hears of this answer hears of it before the next one.
            QMetaObject::invokeMethod(this, &PhotoRegistrar::sendWaiting, Qt::QueuedConnection);
            return true;
        });
    }
    if (busy_ && pending() == 0) {
        busy_ = false;
        emit idle();
    }
}
