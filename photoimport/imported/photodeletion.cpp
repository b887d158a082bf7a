#include "photoimport/imported/photodeletion.h"

#include "files/contenthash.h"
#include "ledger/orderkey.h"
#include "photoimport/imported/tfdellocalphotoimg.h"
#include "photoimport/rules/photorequests.h"
#include "photoimport/rules/photorules.h"
#include "platform/pathform.h"
#include "tasks/background.h"

#include <utility>

namespace {

using Photos = QVector<PhotoDeletionRecording::Photo>;

/// \a photos, each followed by those of its variants that stand on the disk, as they are. Blocks;
/// for worker threads.
Photos withVariants(const Photos &photos, const QString &orderFolder)
{
    Photos all;
    for (const PhotoDeletionRecording::Photo &photo : photos) {
        all.append(photo);
        const QStringList variants = tfvariants::pathsOf(photo.path, orderFolder);
        for (const QString &variant : variants) {
            const ContentReading content =
                readContent(platform::toLocalPath(variant), {}, platform::FileReader::Way::Cached);
            if (content.isRead())
                all.append({photo.id, variant, content.size, content.modified.toMSecsSinceEpoch(),
                            content.hash});
        }
    }
    return all;
}

} // namespace

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
    // Of the variants the ledger knows nothing, since they can be made again: what they are is
    // read.
    onDisk(
        this, request.folder,
        [photos, folder = request.folder] { return withVariants(photos, folder); },
        reading_.only([this, identity](const QVector<PhotoDeletionRecording::Photo> &all) {
            recording_.begin(request_.key, all, [this, identity] { ask(identity); });
        }));
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
    reading_.abandon();
    if (wasAsked)
        recording_.unanswered();
    else
        recording_.refused(QStringLiteral("已取消"));
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
        if (reply.outcome == ServiceReply::Outcome::NoAnswer)
            recording_.unanswered();
        else
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
