#include "distribution/rules/photoidentity.h"

#include <algorithm>

namespace {

void appendOnce(QStringList *keys, const QString &key)
{
    if (!keys->contains(key))
        keys->append(key);
}

} // namespace

OrderPhotos::OrderPhotos(const OrderDetail &detail)
{
    for (const DetailPhoto &photo : detail.images) {
        if (!photo.id.isEmpty())
            ids_.insert(photo.id);
        if (!photo.source().isEmpty())
            byFile_.insert(photo.file(), photo.key());
        appendOnce(&chosen_[photo.imgName], photo.key());
    }
    all_ = chosen_;
    const QVector<DetailProduct> products = detail.products();
    for (const DetailProduct &product : products) {
        forEachPhoto(product, [this](const DetailProduct &, const DetailPhoto &photo) {
            if (const auto key = keyOf(photo))
                appendOnce(&all_[photo.imgName], *key);
        });
    }
}

std::optional<QString> OrderPhotos::keyOf(const DetailPhoto &photo) const
{
    if (isKnown(photo.id))
        return photo.id;
    const auto file = byFile_.constFind(photo.file());
    if (file != byFile_.constEnd())
        return *file;
    const QStringList keys = chosen_.value(photo.imgName);
    if (keys.isEmpty())
        return photo.source().isEmpty() ? photo.key() : photo.file();
    return keys.size() == 1 ? std::make_optional(keys.first()) : std::nullopt;
}

PhotoVersions::PhotoVersions(const OrderPhotos &photos, const QVector<DetailPhoto> &versions)
    : photos_(photos)
{
    QSet<QString> files;
    for (const DetailPhoto &version : versions) {
        if (photos.isKnown(version.id)) {
            byId_.insert(version.id, version);
        } else if (!files.contains(version.file())) {
            files.insert(version.file());
            byName_[version.imgName].append(version);
        }
    }
}

/// Photos of the name that no version is known to be of.
QStringList PhotoVersions::unserved(const QString &imgName) const
{
    QStringList keys = photos_.namesakes(imgName);
    keys.erase(std::remove_if(keys.begin(), keys.end(),
                              [this](const QString &key) { return byId_.contains(key); }),
               keys.end());
    return keys;
}

PhotoVersions::Found PhotoVersions::of(const DetailPhoto &photo) const
{
    const std::optional<QString> key = photos_.keyOf(photo);
    if (key && byId_.contains(*key))
        return {byId_.value(*key)};
    const QVector<DetailPhoto> candidates = byName_.value(photo.imgName);
    const int owners = unserved(photo.imgName).size();
    if (!key) {
        const bool haveVersions = owners < photos_.namesakes(photo.imgName).size();
        return {std::nullopt, haveVersions || !candidates.isEmpty()};
    }
    if (candidates.isEmpty())
        return {};
    if (candidates.size() > 1 || owners > 1)
        return {std::nullopt, true};
    return {candidates.first()};
}

QStringList PhotoVersions::ownersOf(const DetailPhoto &version) const
{
    return photos_.isKnown(version.id) ? QStringList(version.id) : unserved(version.imgName);
}

QVector<DetailPhoto> PhotoVersions::oneForEach(const QString &imgName) const
{
    const QVector<DetailPhoto> candidates = byName_.value(imgName);
    return candidates.size() == unserved(imgName).size() ? candidates : QVector<DetailPhoto>();
}
