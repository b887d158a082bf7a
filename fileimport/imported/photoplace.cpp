#include "fileimport/imported/photoplace.h"

#include "fileimport/rules/importrules.h"
#include "files/pathgate.h"

namespace {

QString keyOf(const QStringList &levels)
{
    return levels.join(QLatin1Char('\\'));
}

QString keyOf(const QString &folder)
{
    return keyOf(pathgate::levelsOf(folder));
}

} // namespace

PhotoPlace::PhotoPlace(const QString &folder, const QString &publicRoot,
                       const QStringList &otherFolders)
    : folder_(keyOf(folder)), publicRoot_(keyOf(publicRoot))
{
    for (const QString &other : otherFolders)
        others_.insert(keyOf(other));
}

bool PhotoPlace::holds(const QString &wirePath) const
{
    if (wirePath.endsWith(QLatin1Char('\\')) || wirePath.endsWith(QLatin1Char('/')))
        return false;
    QStringList levels = pathgate::levelsOf(wirePath);
    constexpr int rootAndFolder = 2; // no photo lies right below a root of everything
    while (levels.size() > rootAndFolder) {
        levels.removeLast();
        const QString above = keyOf(levels);
        if (above == folder_)
            return true;
        if (others_.contains(above))
            return false;
        if (above == publicRoot_)
            return true;
    }
    return false;
}

PhotoPlace photoPlaceOf(const originalrequests::OrderMap &order, const QVector<ImportOrder> &listed)
{
    const auto value = [&order](const char *key) { return order.value(QString::fromLatin1(key)); };
    QStringList others;
    for (const ImportOrder &other : listed) {
        const bool isSame =
            other.id == value("orderid") && other.orderPhotoId == value("order_photo_id");
        if (!isSame && importrules::hasFolder(other))
            others.append(importrules::importPathOf(other));
    }
    return PhotoPlace(value("importpath"), value("importpublicpath"), others);
}
