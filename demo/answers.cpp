#include "demo/answers.h"

#include "demo/answerparts.h"

#include <QDate>
#include <QJsonArray>

#include <utility>

namespace demo {

namespace {

// The members of an order in an answer, all of them text.
struct OrderField
{
    const char *name;
    QString Order::*value;
};

const OrderField orderFields[] = {
    {"id", &Order::id},
    {"order_photo_id", &Order::photoSetId},
    {"orderpayforkey", &Order::number},
    {"servicetimes", &Order::service},
    {"shopid", &Order::shopId},
    {"storesname", &Order::shopName},
    {"mname", &Order::manName},
    {"wname", &Order::womanName},
    {"mphone", &Order::manPhone},
    {"wphone", &Order::womanPhone},
    {"comboname", &Order::package},
    {"order_price", &Order::price},
    {"photonum", &Order::photoCount},
    {"shotdate", &Order::shotDate},
    {"sampledate", &Order::sampleDate},
    {"selectphototime", &Order::selectionTime},
    {"role1", &Order::photographer},
    {"role1name", &Order::photographer},
    {"role2", &Order::makeUpArtist},
    {"role2name", &Order::makeUpArtist},
    {"role7id", &Order::role7Id},
    {"selectphotoname", &Order::consultant},
    {"tiaosename", &Order::retoucher},
    {"issample", &Order::isSample},
    {"fulfil_time", &Order::completionTime},
    {"netpath", &Order::netPath},
    {"picpathnew", &Order::folderPath},
    {"imagesize_small", &Order::sizeSmall},
    {"imagesize_middle", &Order::sizeMiddle},
    {"imagesize_big", &Order::sizeBig},
};

// How many photos of a kind the service has on its books.
const struct
{
    const char *name;
    PhotoKind kind;
} orderCounts[] = {
    {"number_yuanpian", PhotoKind::Original},
    {"number_yuanshidang", PhotoKind::Raw},
    {"number_jingxiu", PhotoKind::Retouched},
};

QJsonArray photoEntries(const QVector<Photo> &photos, const QString &serviceUrl)
{
    QJsonArray entries;
    for (const Photo &photo : photos) {
        entries.append(QJsonObject{
            {QStringLiteral("id"), photo.id},
            {QStringLiteral("img_name"), photo.name},
            {QStringLiteral("type"), photo.type},
            {QStringLiteral("localpath"), photo.localPath},
            {QStringLiteral("url"),
             photo.urlPath.isEmpty() ? QString() : QString(serviceUrl + photo.urlPath)}});
    }
    return entries;
}

// What this studio keeps of an order beyond what the clients are written for.
void addOwnMembers(const Order &order, QJsonObject *object)
{
    static const char *const styles[] = {"森系", "韩式", "中式", "旅拍"};
    const int number = order.id.toInt();
    const QDate selection =
        QDate::fromString(order.selectionTime.left(10), QStringLiteral("yyyy-MM-dd"));
    object->insert(QStringLiteral("album_style"), text(styles[number % 4]));
    object->insert(QStringLiteral("deposit"), QStringLiteral("1,%1.00").arg(200 + number % 700));
    object->insert(QStringLiteral("return_visit"),
                   selection.isValid() ? selection.addDays(3).toString(QStringLiteral("yyyy/M/d"))
                                       : QString());
    object->insert(QStringLiteral("companions"), number % 5);
    object->insert(QStringLiteral("pickuptime"),
                   selection.isValid() ? selection.addDays(30).toString(Qt::ISODate) : QString());
    object->insert(QStringLiteral("isurgent"), text(number % 8 == 3 ? "1" : "0"));
}

} // namespace

Answers::Answers(Studio &studio, WirePaths paths) : studio_(studio), paths_(std::move(paths))
{
}

// The picture of a barcode, order/getbarcodegen, is a GET and no JSON.
QJsonObject Answers::answer(const Fields &query, const Fields &fields)
{
    const QString action = field(query, "m") + QLatin1Char('/') + field(query, "a");
    if (field(query, "g") != QStringLiteral("OrvelleDPc"))
        return refusal(QStringLiteral("未知的操作: %1/%2").arg(field(query, "g"), action));
    if (field(fields, "token") != QStringLiteral("5f0c2a9e7d41b6839a0e4c7b21f3d8a6"))
        return refusal(QStringLiteral("登录凭证无效"));
    if (action == QStringLiteral("public/dologin"))
        return login(fields);
    if (action == QStringLiteral("public/switch_shop"))
        return switchShop(fields);

    const QString problem = identityProblem(fields);
    if (!problem.isEmpty())
        return refusal(problem);
    if (action == QStringLiteral("order/get_persons"))
        return persons(fields);
    if (action == QStringLiteral("order/order_list") ||
        action == QStringLiteral("order/order_list_type_1"))
        return orderList(fields);
    if (action == QStringLiteral("order/saveorderphotopath"))
        return registerFolder(fields);
    if (action == QStringLiteral("order/savepicpath") ||
        action == QStringLiteral("order/savepicpathmv"))
        return registerFile(fields);
    if (action == QStringLiteral("order/savepicpath_batch"))
        return registerBatch(fields);
    if (action == QStringLiteral("order/getorder_pics"))
        return importedPhotos(fields);
    if (action == QStringLiteral("order/delete_pics"))
        return deletePhotos(fields);
    if (action == QStringLiteral("order/delimages"))
        return deleteImported(fields, false);
    if (action == QStringLiteral("order/delmv"))
        return deleteImported(fields, true);
    if (action == QStringLiteral("order/delete_pic_before"))
        return announceDeletion(fields);
    if (action == QStringLiteral("order/delete_pic_after"))
        return reportDeletion(fields);
    if (action == QStringLiteral("order/orderphotodetail"))
        return orderDetail(fields);
    if (action == QStringLiteral("order/download_success"))
        return downloadSuccess(fields);
    if (action == QStringLiteral("public/save_goodsfoldernamerule"))
        return saveNamingRule(fields);
    return refusal(QStringLiteral("未知的操作: %1").arg(action));
}

// username, password → SUPERID, EID (both of the first branch), UID, shop_data.
QJsonObject Answers::login(const Fields &fields) const
{
    const Account *account =
        studio_.accountByLogin(field(fields, "username"), field(fields, "password"));
    if (!account)
        return refusal(QStringLiteral("账号或密码错误"));

    const QVector<Shop> shops = studio_.shopsOf(*account);
    QJsonArray shopData;
    for (const Shop &shop : shops) {
        shopData.append(QJsonObject{{QStringLiteral("id"), shop.id},
                                    {QStringLiteral("name"), shop.name},
                                    {QStringLiteral("goodsfoldernamerule"), shop.namingRule},
                                    {QStringLiteral("importpublicpath"), shop.publicRoot}});
    }
    QJsonObject reply = success();
    reply[QStringLiteral("SUPERID")] = shops.first().superId;
    reply[QStringLiteral("EID")] = account->employeeIds.value(shops.first().id);
    reply[QStringLiteral("UID")] = account->uid;
    reply[QStringLiteral("shop_data")] = shopData;
    return reply;
}

// shopid → SUPERID, EID of that branch, importpublicpath (empty when the branch has none),
// is_all_del_photo ("1" where whole orders may be deleted).
QJsonObject Answers::switchShop(const Fields &fields) const
{
    const Account *account = studio_.accountByUid(field(fields, "uid"));
    if (!account)
        return refusal(QStringLiteral("请先登录"));
    const Shop *shop = studio_.shop(field(fields, "shopid"));
    if (!shop)
        return refusal(QStringLiteral("分店不存在"));
    if (!account->employeeIds.contains(shop->id))
        return refusal(QStringLiteral("没有该分店的权限"));
    QJsonObject reply = success();
    reply[QStringLiteral("SUPERID")] = shop->superId;
    reply[QStringLiteral("EID")] = account->employeeIds.value(shop->id);
    reply[QStringLiteral("importpublicpath")] = shop->publicRoot;
    reply[QStringLiteral("is_all_del_photo")] = text(shop->mayDeleteAll ? "1" : "0");
    reply[QStringLiteral("issjfenjianms")] = QStringLiteral("1");
    return reply;
}

// → persons: id, name.
QJsonObject Answers::persons(const Fields &fields) const
{
    QJsonArray persons;
    for (const Person &person : studio_.shop(field(fields, "shopid"))->persons) {
        persons.append(
            QJsonObject{{QStringLiteral("id"), person.id}, {QStringLiteral("name"), person.name}});
    }
    QJsonObject reply = success();
    reply[QStringLiteral("persons")] = persons;
    return reply;
}

// keyword, searchtype (1 text, 4 shoot date, 5 selection date, 6 completion date), role7id → data,
// openypml, delyp.
QJsonObject Answers::orderList(const Fields &fields) const
{
    const QString searchType = field(fields, "searchtype");
    const QString keyword = field(fields, "keyword");
    SearchBy by = SearchBy::Text;
    if (searchType == QStringLiteral("4"))
        by = SearchBy::ShotDate;
    else if (searchType == QStringLiteral("6"))
        by = SearchBy::CompletionDate;
    else if (searchType == QStringLiteral("5"))
        by = SearchBy::SelectionDate;
    else if (searchType != QStringLiteral("1"))
        return refusal(QStringLiteral("未知的搜索类型: %1").arg(searchType));
    const QDate date = QDate::fromString(keyword, Qt::ISODate);
    if (by != SearchBy::Text && !date.isValid())
        return refusal(QStringLiteral("日期格式不正确: %1").arg(keyword));

    QJsonArray data;
    for (const Order &order :
         studio_.search(field(fields, "shopid"), by, keyword, date, field(fields, "role7id")))
        data.append(orderObject(order));
    QJsonObject reply = success();
    reply[QStringLiteral("data")] = data;
    reply[QStringLiteral("openypml")] = QStringLiteral("1");
    reply[QStringLiteral("delyp")] = QStringLiteral("1");
    return reply;
}

QJsonObject Answers::orderObject(const Order &order) const
{
    QJsonObject object;
    for (const OrderField &member : orderFields)
        object[text(member.name)] = order.*member.value;
    // Once its files lie somewhere, that is the order's folder.
    if (order.netPath.isEmpty())
        object[QStringLiteral("netpath")] = order.folderPath;
    for (const auto &count : orderCounts)
        object[text(count.name)] = QString::number(order.registeredNames(count.kind).size());
    object[QStringLiteral("images")] =
        photoEntries(order.chosenPhotos + order.imported(PhotoKind::Original) +
                         order.imported(PhotoKind::RetouchedVideo),
                     serviceUrl_);
    object[QStringLiteral("images_taipian")] =
        photoEntries(order.trialPhotos + order.imported(PhotoKind::TrialVideo), serviceUrl_);
    addDistributionMembers(order, &object);
    addOwnMembers(order, &object);
    return object;
}

// uid, shopid, and where they are sent: eid, superid, personid, person_id.
QString Answers::identityProblem(const Fields &fields) const
{
    if (!studio_.accountByUid(field(fields, "uid")))
        return QStringLiteral("请先登录");
    if (!studio_.shop(field(fields, "shopid")))
        return QStringLiteral("分店不存在");
    for (const char *employee : {"eid", "personid", "person_id"}) {
        if (!studio_.belongTogether(field(fields, "uid"), field(fields, "shopid"),
                                    field(fields, employee), field(fields, "superid")))
            return QStringLiteral("分店与员工不匹配，请重新选择分店");
    }
    return QString();
}

Order *Answers::orderOf(const Fields &fields, QString *problem) const
{
    Order *order = studio_.orderByPhotoSet(field(fields, "order_photo_id"));
    if (!order) {
        *problem = QStringLiteral("订单照片不存在: %1").arg(field(fields, "order_photo_id"));
        return nullptr;
    }
    if (order->shopId != field(fields, "shopid")) {
        *problem = QStringLiteral("订单不属于该分店");
        return nullptr;
    }
    if (fields.contains(QStringLiteral("orderid")) && field(fields, "orderid") != order->id) {
        *problem = QStringLiteral("订单与订单照片不一致");
        return nullptr;
    }
    return order;
}

QString changeOrder(Order &order, const QJsonObject &fields)
{
    Order changed = order;
    for (auto wanted = fields.begin(); wanted != fields.end(); ++wanted) {
        bool known = false;
        for (const OrderField &member : orderFields) {
            if (wanted.key() == text(member.name)) {
                changed.*member.value = wanted->toString();
                known = true;
            }
        }
        if (!known || !wanted->isString())
            return QStringLiteral("not a text field of an order: %1").arg(wanted.key());
    }
    order = changed;
    return QString();
}

} // namespace demo
