#include "photoimport/imported/photodeletion.h"

#include "photoimport/imported/tfdellocalphotoimg.h"
#include "photoimport/rules/photorequests.h"
#include "photoimport/rules/photorules.h"

#include <utility>

DeletionRequest deletionOf(const PhotoOrder &order, const QStringList &ids,
                           const QStringList &names, PhotoMode photoMode)
{
    const QString folder = order.folder();
    DeletionRequest request{
        order.identity(), order.displayName(), ids, names, {}, photoMode, folder};
    PhotoInfo photo;
    photo.kind = photorules::mainKind(photoMode);
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
    connect(thread_, &QThread::finished, this, [this] {
        if (!asking_) // for the next ones already
            claim_.release();
        emit removed();
    });
}

bool PhotoDeletion::isRemoving() const
{
    return thread_->isRunning();
}

bool PhotoDeletion::start(const DeletionRequest &request, const orderqueries::Identity &identity)
{
    if (isActive())
        return false;
    if (!orderqueries::mayWorkOn(request.orderId, identity)) {
        emit refused(request, refusal(orderqueries::otherBranchText(request.orderName)));
        return false;
    }
    const auto conflict = ordersatwork::claim({request.orderId}, photorules::toolName(), &claim_);
    if (conflict) {
        emit refused(request, refusal(ordersatwork::refusal(request.orderName, conflict->tool)));
        return false;
    }
    asking_ = true;
    request_ = request;
    call_.start(photorequests::deletionAction(request.photoMode),
                photorequests::deletionBody(request.orderId.orderPhotoId, request.ids, identity),
                [this, request](const ServiceReply &reply) { onReply(request, reply); });
    return true;
}

ServiceReply PhotoDeletion::refusal(const QString &text)
{
    ServiceReply reply;
    reply.outcome = ServiceReply::Outcome::Refused;
    reply.message = text;
    return reply;
}

bool PhotoDeletion::cancel()
{
    call_.cancel();
    if (!std::exchange(asking_, false))
        return false;
    claim_.release();
    emit unanswered(request_);
    return true;
}

void PhotoDeletion::onReply(const DeletionRequest &request, const ServiceReply &reply)
{
    asking_ = false;
    if (!reply.isSuccess()) {
        claim_.release();
        if (reply.outcome == ServiceReply::Outcome::NoAnswer)
            emit unanswered(request);
        else
            emit refused(request, reply);
        return;
    }
    thread_->setDelPhotos(request.paths, request.folder);
    thread_->start();
    emit selectedPhotosDeleted(request);
}
