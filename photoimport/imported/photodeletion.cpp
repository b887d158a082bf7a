#include "photoimport/imported/photodeletion.h"

#include "ledger/orderkey.h"
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
    request.key = ledger::orderKey(order.identity(), order.info.orderPayForKey,
                                   order.info.serviceTimes, {order.info.mname, order.info.wname});
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
    connect(thread_, &TFDelLocalPhotoImg::gone, &recording_, &PhotoDeletionRecording::gone);
    connect(thread_, &QThread::finished, this, [this] {
        if (!asking_) { // for the next ones already
            claim_.release();
            recording_.end();
        }
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
    QVector<PhotoDeletionRecording::Photo> photos;
    for (int index = 0; index < request.paths.size(); ++index)
        photos.append({request.ids.value(index), request.paths.at(index)});
    recording_.begin(request.key, photos, [this, identity] { ask(identity); });
    return true;
}

void PhotoDeletion::ask(const orderqueries::Identity &identity)
{
    call_.start(photorequests::deletionAction(request_.photoMode),
                photorequests::deletionBody(request_.orderId.orderPhotoId, request_.ids, identity),
                [this, request = request_](const ServiceReply &reply) { onReply(request, reply); });
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
    if (!std::exchange(asking_, false))
        return false;
    const bool wasAsked = call_.isActive();
    call_.cancel();
    recording_.refused(QStringLiteral("服务端没有答复"));
    recording_.end();
    claim_.release();
    if (wasAsked)
        emit unanswered(request_);
    else
        emit refused(request_, refusal(QStringLiteral("删除已取消，照片没有改动")));
    return true;
}

void PhotoDeletion::onReply(const DeletionRequest &request, const ServiceReply &reply)
{
    asking_ = false;
    if (!reply.isSuccess()) {
        recording_.refused(reply.message.isEmpty() ? QStringLiteral("提交数据失败")
                                                   : reply.message);
        recording_.end();
        claim_.release();
        if (reply.outcome == ServiceReply::Outcome::NoAnswer)
            emit unanswered(request);
        else
            emit refused(request, reply);
        return;
    }
    recording_.announced();
    thread_->setDelPhotos(request.paths, request.folder);
    thread_->start();
    emit selectedPhotosDeleted(request);
}
