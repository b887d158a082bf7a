#include "photoimport/run/unregisteredphotos.h"

#include "files/paths.h"
#include "photoimport/rules/photorules.h"
#include "photoimport/run/photoregistrar.h"

#include <array>
#include <utility>

namespace {

constexpr std::array<PhotoMode, 3> allModes = {PhotoMode::Photos, PhotoMode::TrialVideos,
                                               PhotoMode::RetouchedVideos};

/// The mode in which a job of the order's folder writes \a target; the job then is \a photo.
std::optional<PhotoMode> modeThatWrites(const QString &target, const QString &folder,
                                        PhotoInfo *photo)
{
    photo->fileName = target.section(QLatin1Char('\\'), -1);
    photo->importFolder = folder;
    for (const PhotoMode mode : allModes) {
        photo->kind = photorules::mainKind(mode);
        if (wirePathKey(photorules::outputPathOf(folder, *photo)) == wirePathKey(target))
            return mode;
    }
    return std::nullopt;
}

QString targetOf(const PhotoInfo &photo)
{
    return wirePathKey(photorules::outputPathOf(photo.importFolder, photo));
}

} // namespace

UnregisteredPhotos UnregisteredPhotos::of(const PhotoOrder &order,
                                          const QVector<ledger::Copy> &copies)
{
    UnregisteredPhotos photos;
    photos.order = order.info;
    photos.order.photos.clear();
    QSet<QString> known;
    for (const ledger::Copy &copy : copies) {
        const QString key = wirePathKey(copy.target);
        if (!copy.isFinished() || copy.registration != ledger::Registration::Awaited ||
            known.contains(key))
            continue;
        known.insert(key);
        PhotoInfo photo;
        const auto mode = modeThatWrites(copy.target, order.folder(), &photo);
        if (!mode) {
            photos.order.photos.clear();
            photos.modes.clear();
            photos.elsewhere = copy.target;
            return photos;
        }
        photos.order.photos.append(photo);
        photos.modes.append(*mode);
    }
    return photos;
}

UnregisteredPhotosRegistration::UnregisteredPhotosRegistration(PhotoRegistrar *registrar,
                                                               QObject *parent)
    : QObject(parent), registrar_(registrar)
{
    connect(registrar, &PhotoRegistrar::orderRegistered, this,
            &UnregisteredPhotosRegistration::announcePhotos);
    connect(registrar, &PhotoRegistrar::orderRefused, this,
            &UnregisteredPhotosRegistration::refuseAll);
    connect(registrar, &PhotoRegistrar::photoRegistered, this,
            [this](const OrderIdentity &orderId, const PhotoInfo &photo) {
                onPhoto(orderId, photo, {});
            });
    connect(registrar, &PhotoRegistrar::photoRefused, this,
            &UnregisteredPhotosRegistration::onPhoto);
}

void UnregisteredPhotosRegistration::start(const UnregisteredPhotos &photos,
                                           const orderqueries::Identity &identity)
{
    if (photos.order.photos.isEmpty() || isFor(photos.order.identity()))
        return;
    if (!outcome_)
        outcome_ = Outcome();
    orders_.insert(photos.order.identity(), {photos, identity, {}});
    registrar_->upImportOrderData(photos.order, identity);
}

void UnregisteredPhotosRegistration::announcePhotos(const OrderIdentity &orderId)
{
    const auto order = orders_.find(orderId);
    if (order == orders_.end() || !order->awaited.isEmpty())
        return;
    const UnregisteredPhotos photos = order->photos;
    for (const PhotoInfo &photo : photos.order.photos)
        order->awaited.insert(targetOf(photo));
    for (int index = 0; index < photos.modes.size(); ++index)
        registrar_->upImportPhotoInfo(photos.order, index, photos.modes.at(index), order->identity);
}

void UnregisteredPhotosRegistration::onPhoto(const OrderIdentity &orderId, const PhotoInfo &photo,
                                             const QString &refusal)
{
    const auto order = orders_.find(orderId);
    if (order == orders_.end() || !order->awaited.remove(targetOf(photo)))
        return;
    if (refusal.isEmpty())
        ++outcome_->taken;
    else
        outcome_->refusals.append(QStringLiteral("%1: %2").arg(photo.fileName, refusal));
    if (order->awaited.isEmpty())
        orders_.erase(order);
}

void UnregisteredPhotosRegistration::refuseAll(const OrderIdentity &orderId, const QString &reason)
{
    const auto order = orders_.find(orderId);
    if (order == orders_.end() || !order->awaited.isEmpty())
        return;
    outcome_->refusals.append(
        QStringLiteral("%1 的导片目录: %2").arg(order->photos.order.orderPayForKey, reason));
    orders_.erase(order);
}

std::optional<UnregisteredPhotosRegistration::Outcome> UnregisteredPhotosRegistration::take()
{
    return orders_.isEmpty() ? std::exchange(outcome_, std::nullopt) : std::nullopt;
}

void UnregisteredPhotosRegistration::abandon()
{
    orders_.clear();
    outcome_.reset();
}
