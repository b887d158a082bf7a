#include "net/orderqueries.h"

#include "net/formbody.h"
#include "net/replyfields.h"

#include <QHash>
#include <QJsonArray>
#include <QSet>

#include <algorithm>

namespace orderqueries {

namespace {

QString isoDate(const QDate &date)
{
    return date.toString(QStringLiteral("yyyy-MM-dd"));
}

int sizeOr(const QJsonObject &element, const QString &key, int otherwise)
{
    const int size = reply::number(element, key, otherwise);
    return size > 0 ? size : otherwise;
}

QVector<OrderPhoto> readPhotos(const QJsonObject &element, const QString &key)
{
    QVector<OrderPhoto> photos;
    const auto elements = reply::objects(element, key);
    for (const QJsonObject &photo : elements) {
        photos.append({reply::text(photo, QStringLiteral("img_name")),
                       reply::text(photo, QStringLiteral("url")),
                       reply::text(photo, QStringLiteral("localpath")),
                       reply::text(photo, QStringLiteral("id")),
                       reply::text(photo, QStringLiteral("type"))});
    }
    return photos;
}

} // namespace

Identity Identity::fromAccount()
{
    const bool chosenIsKnown = std::any_of(
        AccountContext::shopList.cbegin(), AccountContext::shopList.cend(),
        [](const ShopRecord &shop) { return shop.id == AccountContext::selectedShopId; });
    return {chosenIsKnown ? AccountContext::selectedShopId : AccountContext::shopId,
            AccountContext::superId, AccountContext::eid};
}

QString importFolderOf(const OrderInfo &order, const QString &importPath, const QString &publicPath)
{
    return composeImportPath({
        {QStringLiteral("importPath"), importPath},
        {QStringLiteral("importPublicPath"), publicPath},
        {QStringLiteral("shotdate_year"), order.shotDate.year},
        {QStringLiteral("shotdate_month"), order.shotDate.month},
        {QStringLiteral("shotdate_day"), order.shotDate.day},
        {QStringLiteral("orderNumber"), order.orderPayForKey},
        {QStringLiteral("photoNum"), order.serviceTimes},
        {QStringLiteral("mname"), order.mname},
        {QStringLiteral("wname"), order.wname},
    });
}

QByteArray switchShopBody(const QString &shopId)
{
    return FormBody().add(QStringLiteral("shopid"), shopId).bytes();
}

FormBody &addIdentity(FormBody &body, const Identity &identity)
{
    return body.add(QStringLiteral("shopid"), identity.shopId)
        .add(QStringLiteral("eid"), identity.employeeId)
        .add(QStringLiteral("superid"), identity.superId)
        .add(QStringLiteral("personid"), identity.employeeId);
}

QByteArray personsBody(const Identity &identity)
{
    FormBody body;
    return addIdentity(body, identity).bytes();
}

QByteArray orderListBody(const OrderSearch &search, const Identity &identity,
                         const QString &role7id)
{
    QString keyword = search.text;
    QString searchType = QStringLiteral("1");
    if (search.type == OrderSearch::ShootingDate) {
        keyword = isoDate(search.shootingDate);
        searchType = QStringLiteral("4");
    } else if (search.type == OrderSearch::SelectionDate) {
        keyword = isoDate(search.selectionDate);
        searchType = QStringLiteral("5");
    } else if (search.type == OrderSearch::CompletionDate) {
        keyword = isoDate(search.completionDate);
        searchType = QStringLiteral("6");
    }
    FormBody body;
    body.add(QStringLiteral("keyword"), keyword).add(QStringLiteral("searchtype"), searchType);
    if (!role7id.isNull())
        body.add(QStringLiteral("role7id"), role7id);
    body.add(QStringLiteral("ratio"), QStringLiteral("90"));
    return addIdentity(body, identity).bytes();
}

ShopSwitch readShopSwitch(const QJsonObject &reply)
{
    return {reply::text(reply, QStringLiteral("SUPERID")),
            reply::text(reply, QStringLiteral("EID")),
            reply::text(reply, QStringLiteral("importpublicpath")),
            reply::text(reply, QStringLiteral("is_all_del_photo")) == QLatin1String("1"),
            reply::text(reply, QStringLiteral("issjfenjianms"))};
}

QVector<Person> readPersons(const QJsonObject &reply)
{
    QVector<Person> persons;
    const auto elements = reply::objects(reply, QStringLiteral("persons"));
    for (const QJsonObject &person : elements) {
        persons.append({reply::text(person, QStringLiteral("id")),
                        reply::text(person, QStringLiteral("name"))});
    }
    return persons;
}

OrderElements orderElements(const QJsonObject &reply)
{
    const QJsonValue data = reply.value(QLatin1String("data"));
    OrderElements elements{data.isArray(), data.toArray().size(), {}, {}};
    QHash<OrderIdentity, QSet<QString>> folders; // of what is listed or protected already
    const auto objects = reply::objects(reply, QStringLiteral("data"));
    for (const QJsonObject &element : objects) {
        const OrderIdentity identity{
            {},
            reply::text(element, QStringLiteral("id")),
            reply::text(element, QStringLiteral("order_photo_id")),
        };
        const QString folder = reply::text(element, QStringLiteral("netpath"));
        const bool isNew = !folders.contains(identity);
        QSet<QString> &known = folders[identity];
        if (known.contains(folder))
            continue;
        known.insert(folder);
        (isNew && !identity.isEmpty() ? elements.listed : elements.unlisted).append(element);
    }
    return elements;
}

bool mayWorkOn(const OrderIdentity &order, const Identity &who)
{
    return order.branch == who.shopId;
}

QString otherBranchText(const QString &orderName)
{
    return QStringLiteral("订单 %1 属于其他分店，请切换到该分店后重新搜索").arg(orderName);
}

OrderInfo readOrderHead(const QJsonObject &element, const SearchedBranch &branch)
{
    OrderInfo order;
    order.branch = branch.id;
    reply::readTexts(element, &order,
                     {{"id", &OrderInfo::id},
                      {"order_photo_id", &OrderInfo::orderPhotoId},
                      {"orderpayforkey", &OrderInfo::orderPayForKey},
                      {"servicetimes", &OrderInfo::serviceTimes},
                      {"mname", &OrderInfo::mname},
                      {"wname", &OrderInfo::wname},
                      {"mphone", &OrderInfo::mphone},
                      {"wphone", &OrderInfo::wphone},
                      {"selectphototime", &OrderInfo::selectPhotoTime},
                      {"role1", &OrderInfo::role1},
                      {"role2", &OrderInfo::role2},
                      {"selectphotoname", &OrderInfo::selectPhotoName},
                      {"issample", &OrderInfo::isSample},
                      {"tiaosename", &OrderInfo::tiaoseName},
                      {"storesname", &OrderInfo::storesName},
                      {"shotdate", &OrderInfo::shotDateText},
                      {"netpath", &OrderInfo::netPath},
                      {"picpathnew", &OrderInfo::picPathNew}});
    order.shotDate = parseShootDate(order.shotDateText);
    return order;
}

OrderInfo readOrderInfo(const QJsonObject &element, const SearchedBranch &branch)
{
    OrderInfo order = readOrderHead(element, branch);
    order.smallSize = sizeOr(element, QStringLiteral("imagesize_small"), order.smallSize);
    order.middleSize = sizeOr(element, QStringLiteral("imagesize_middle"), order.middleSize);
    order.bigSize = sizeOr(element, QStringLiteral("imagesize_big"), order.bigSize);
    order.images = readPhotos(element, QStringLiteral("images"));
    order.imagesTaipian = readPhotos(element, QStringLiteral("images_taipian"));
    return order;
}

QList<ShopRecord> readShops(const QJsonObject &loginReply, bool withRules)
{
    QList<ShopRecord> shops;
    const auto elements = reply::objects(loginReply, QStringLiteral("shop_data"));
    for (const QJsonObject &shop : elements) {
        shops.append(
            {reply::text(shop, QStringLiteral("id")), reply::text(shop, QStringLiteral("name")),
             withRules ? reply::text(shop, QStringLiteral("goodsfoldernamerule")) : QString(),
             reply::text(shop, QStringLiteral("importpublicpath"))});
    }
    return shops;
}

QMap<QString, QString> switchedShopMap(const Identity &identity)
{
    return {{QStringLiteral("shopid"), identity.shopId},
            {QStringLiteral("superid"), identity.superId},
            {QStringLiteral("managerid"), identity.employeeId}};
}

} // namespace orderqueries
