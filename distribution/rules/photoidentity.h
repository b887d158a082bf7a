#pragma once

#include "distribution/rules/orderdetail.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// Tells the photos of one order apart: two cameras that count alike give two photos one name. A
/// photo is known by its id, otherwise by the file it is; by its name only while a single chosen
/// photo has it. Values; for any thread.
class OrderPhotos
{
public:
    explicit OrderPhotos(const OrderDetail &detail);

    /// What the photo is known by: equal for the entries of one photo, in the chosen photos and in
    /// the products alike. Nothing when only a name is known that several chosen photos have.
    std::optional<QString> keyOf(const DetailPhoto &photo) const;
    /// Keys of all photos of that name.
    QStringList namesakes(const QString &imgName) const { return all_.value(imgName); }
    bool isKnown(const QString &id) const { return !id.isEmpty() && ids_.contains(id); }

private:
    QSet<QString> ids_; ///< of the chosen photos
    QHash<QString, QString> byFile_;
    QHash<QString, QStringList> chosen_; ///< keys by name
    QHash<QString, QStringList> all_;    ///< those of photos that are in products alone, too
};

/// One list of versions, such as the retouched ones, of an order's photos.
class PhotoVersions
{
public:
    struct Found
    {
        std::optional<DetailPhoto> version;
        bool unclear = false; ///< there are some of its name, but it cannot be told whose
    };

    PhotoVersions(const OrderPhotos &photos, const QVector<DetailPhoto> &versions);

    Found of(const DetailPhoto &photo) const;
    /// Keys of the photos that \a version may be of: one when it carries a photo's id, otherwise
    /// all of its name that no other version is known to be of.
    QStringList ownersOf(const DetailPhoto &version) const;
    /// All that are known by this name alone, when there is one for each photo of the name that has
    /// none known as its own: where these lie together, nobody needs to tell whose they are.
    QVector<DetailPhoto> oneForEach(const QString &imgName) const;

private:
    QStringList unserved(const QString &imgName) const;

    const OrderPhotos &photos_; ///< outlives this
    QHash<QString, DetailPhoto> byId_;
    QHash<QString, QVector<DetailPhoto>> byName_; ///< without the id of a photo
};
