#include "photoimport/photodeletion.h"

#include "photoimport/photorequests.h"
#include "photoimport/photorules.h"
#include "photoimport/tfdellocalphotoimg.h"

DeletionRequest deletionOf(const PhotoOrder &order, const QStringList &ids,
                           const QStringList &names, int photoMode)
{
    DeletionRequest request{order.info.id, order.info.orderPhotoId, ids, names, {}, photoMode};
    const QString folder = order.folder();
    PhotoInfo photo;
    photo.kind = photoorders::mainKind(photoMode);
    for (const QString &name : names) {
        photo.fileName = name;
        if (!folder.isEmpty())
            request.paths.append(photorules::outputPathOf(folder, photo));
    }
    return request;
}

PhotoDeletion::PhotoDeletion(QObject *parent)
    : QObject(parent), call_(this), thread_(new TFDelLocalPhotoImg(this))
{
    connect(thread_, &QThread::finished, this, &PhotoDeletion::removed);
}

bool PhotoDeletion::isRemoving() const
{
    return thread_->isRunning();
}

bool PhotoDeletion::start(const DeletionRequest &request, const orderqueries::Identity &identity)
{
    if (isActive())
        return false;
    asking_ = true;
    call_.start(photorequests::deletionAction(request.photoMode),
                photorequests::deletionBody(request.orderPhotoId, request.ids, identity),
                [this, request](const ServiceReply &reply) { onReply(request, reply); });
    return true;
}

void PhotoDeletion::cancel()
{
    call_.cancel();
    asking_ = false;
}

void PhotoDeletion::onReply(const DeletionRequest &request, const ServiceReply &reply)
{
    asking_ = false;
    if (!reply.isSuccess()) {
        emit refused(reply);
        return;
    }
    thread_->setDelPhotos(request.paths);
    thread_->start();
    emit selectedPhotosDeleted(request);
}
