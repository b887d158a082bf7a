#pragma once

#include <QHash>
#include <QMetaType>
#include <QString>

/// What tells one listed order from every other: the branch under which it was listed, its id and
/// the id of its photo set. Two services of one order share the id and differ in the photo set, so
/// no part of it is enough alone.
struct OrderIdentity
{
    QString branch; ///< id of the shop
    QString id;
    QString orderPhotoId;

    /// Whether it says nothing: no order is known by its branch alone.
    bool isEmpty() const { return id.isEmpty() && orderPhotoId.isEmpty(); }

    friend bool operator==(const OrderIdentity &one, const OrderIdentity &other)
    {
        return one.branch == other.branch && one.id == other.id &&
               one.orderPhotoId == other.orderPhotoId;
    }
    friend bool operator!=(const OrderIdentity &one, const OrderIdentity &other)
    {
        return !(one == other);
    }
    friend uint qHash(const OrderIdentity &identity, uint seed = 0)
    {
        return qHash(identity.branch, seed) ^ (qHash(identity.id, seed) * 31) ^
               (qHash(identity.orderPhotoId, seed) * 961);
    }
};
Q_DECLARE_METATYPE(OrderIdentity)
