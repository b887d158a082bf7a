#include "fileimport/imported/originalrequests.h"

#include "fileimport/rules/importrules.h"
#include "net/formbody.h"
#include "net/orderfiles.h"
#include "net/replyfields.h"

#include <algorithm>
#include <iterator>

namespace originalrequests {

namespace {

FormBody orderFields(const OrderMap &order)
{
    FormBody body;
    for (const char *key : {"shopid", "order_photo_id"})
        body.add(QString::fromLatin1(key), order.value(QString::fromLatin1(key)));
    return body;
}

PhotoEntry readEntry(const QJsonObject &element, PhotoEntry::Kind kind)
{
    PhotoEntry entry;
    entry.kind = kind;
    reply::readTexts(element, &entry,
                     {{"img_name", &PhotoEntry::imgName},
                      {"id", &PhotoEntry::id},
                      {"localpath", &PhotoEntry::localPath},
                      {"url", &PhotoEntry::url},
                      {"isdownload", &PhotoEntry::isDownload}});
    for (const char *key : {"localpath_90", "localpath_1920"}) {
        const QString variant = reply::text(element, QString::fromLatin1(key));
        if (!variant.isEmpty())
            entry.variants.append(variant);
    }
    if (kind == PhotoEntry::Kind::RawFile)
        entry.icon = QStringLiteral(":/public/image/public/icon/raw.png");
    return entry;
}

} // namespace

OrderMap orderMap(const ImportOrder &order)
{
    return {{QStringLiteral("id"), order.id},
            {QStringLiteral("orderid"), order.id},
            {QStringLiteral("order_photo_id"), order.orderPhotoId},
            {QStringLiteral("orderpayforkey"), order.orderPayForKey},
            {QStringLiteral("servicetimes"), order.serviceTimes},
            {QStringLiteral("wname"), order.wname},
            {QStringLiteral("mname"), order.mname},
            {QStringLiteral("comboname"), order.comboName},
            {QStringLiteral("shotdate"), order.shotDateText},
            {QStringLiteral("role1name"), order.role1Name},
            {QStringLiteral("shopid"), order.branch},
            {QStringLiteral("delyp"), order.delyp},
            {QStringLiteral("importpath"),
             importrules::hasFolder(order) ? importrules::importPathOf(order) : QString()},
            {QStringLiteral("importpublicpath"), order.importPublicPath}};
}

OrderIdentity identityOf(const OrderMap &order)
{
    return {order.value(QStringLiteral("shopid")), order.value(QStringLiteral("orderid")),
            order.value(QStringLiteral("order_photo_id"))};
}

QString numberOf(const OrderMap &order)
{
    return order.value(QStringLiteral("orderpayforkey")) + QLatin1Char('-') +
           order.value(QStringLiteral("servicetimes"));
}

QString title(const OrderMap &order)
{
    const auto value = [&order](const char *key) { return order.value(QString::fromLatin1(key)); };
    // All at once: a name may hold a "%1" of its own.
    return QStringLiteral("已导入 %1-%2 %3 %4 %5")
        .arg(value("orderpayforkey"), value("servicetimes"), value("wname"), value("mname"),
             value("role1name"));
}

bool mayDelete(const OrderMap &order)
{
    return order.value(QStringLiteral("delyp")) == QLatin1String("1");
}

QByteArray listBody(const OrderMap &order, const QString &timestamp)
{
    return orderfiles::listBody(order.value(QStringLiteral("shopid")),
                                order.value(QStringLiteral("order_photo_id")), timestamp);
}

QByteArray deleteBody(const OrderMap &order, const QStringList &ids, const QString &timestamp)
{
    return orderFields(order)
        .add(QStringLiteral("ids"), ids.join(QLatin1Char(',')))
        .add(QStringLiteral("timestamp"), timestamp)
        .bytes();
}

QVector<PhotoEntry> withId(const QVector<PhotoEntry> &entries)
{
    QVector<PhotoEntry> usable;
    std::copy_if(entries.cbegin(), entries.cend(), std::back_inserter(usable),
                 [](const PhotoEntry &entry) {
                     return !entry.id.isEmpty() && !entry.id.contains(QLatin1Char(','));
                 });
    return usable;
}

QVector<PhotoEntry> readListing(const QJsonObject &reply)
{
    QVector<PhotoEntry> entries;
    const auto read = [&](const char *key, PhotoEntry::Kind kind) {
        const auto elements = reply::objects(reply, QString::fromLatin1(key));
        for (const QJsonObject &element : elements)
            entries.append(readEntry(element, kind));
    };
    read("images_yuanshidang", PhotoEntry::Kind::RawFile);
    read("images_yuanpian", PhotoEntry::Kind::Photo);
    return entries;
}

} // namespace originalrequests
