#include "distribution/rules/distributionrequests.h"

#include "app/context/accountcontext.h"
#include "net/formbody.h"
#include "net/replyfields.h"

#include <QJsonObject>
#include <QUrl>

using orderqueries::OrderSearch;

namespace distributionrequests {

namespace {

struct SearchType
{
    OrderSearch::Type type;
    QString text;
    QString parameter;
};

const SearchType searchTypes[] = {
    {OrderSearch::BasicInformation, QStringLiteral("基本信息"), QStringLiteral("1")},
    {OrderSearch::ShootingDate, QStringLiteral("拍照日期"), QStringLiteral("4")},
    {OrderSearch::SelectionDate, QStringLiteral("选片日期"), QStringLiteral("5")},
};

OrderData readOrder(const QJsonObject &element)
{
    OrderData order;
    reply::readTexts(element, &order,
                     {{"id", &OrderData::id},
                      {"order_photo_id", &OrderData::orderPhotoId},
                      {"orderpayforkey", &OrderData::orderPayForKey},
                      {"servicetimes", &OrderData::serviceTimes},
                      {"wname", &OrderData::wname},
                      {"mname", &OrderData::mname},
                      {"comboname", &OrderData::comboName},
                      {"shotdate", &OrderData::shotDate},
                      {"sampledate", &OrderData::sampleDate},
                      {"order_price", &OrderData::orderPrice},
                      {"selectphotoname", &OrderData::selectPhotoName},
                      {"netpath", &OrderData::netPath},
                      {"wphone", &OrderData::wphone},
                      {"mphone", &OrderData::mphone},
                      {"selectphototime", &OrderData::selectPhotoTime},
                      {"role1", &OrderData::role1},
                      {"role2", &OrderData::role2},
                      {"iszsysd", &OrderData::isZsysd},
                      {"iszsjx", &OrderData::isZsjx},
                      {"number_jingxiu", &OrderData::numberJingxiu}});
    order.images = readDetailPhotos(element, QStringLiteral("images"));
    order.images11 = readDetailPhotos(element, QStringLiteral("images_1_1"));
    order.images10 = readDetailPhotos(element, QStringLiteral("images_1_0"));
    return order;
}

} // namespace

QString orderListAction(ListMode mode)
{
    switch (mode) {
    case ListMode::Plain:
        return orderqueries::orderListAction;
    case ListMode::Typed:
        return QStringLiteral("&m=order&a=order_list_type_1");
    }
    Q_UNREACHABLE();
}

QByteArray orderListBody(const QString &searchType, const QString &keyword,
                         const orderqueries::Identity &identity)
{
    FormBody body;
    body.add(QStringLiteral("keyword"), keyword);
    for (const SearchType &each : searchTypes) {
        if (each.text == searchType)
            body.add(QStringLiteral("searchtype"), each.parameter);
    }
    return orderqueries::addIdentity(body, identity).bytes();
}

QByteArray detailBody(const OrderData &order, const orderqueries::Identity &identity)
{
    FormBody body;
    body.add(QStringLiteral("order_photo_id"), order.orderPhotoId);
    return orderqueries::addIdentity(body, identity).bytes();
}

QByteArray downloadedBody(const QString &imageId, const orderqueries::Identity &identity)
{
    FormBody body;
    body.add(QStringLiteral("id"), imageId);
    return orderqueries::addIdentity(body, identity).bytes();
}

QString barcodeUrl(const QString &orderNumber)
{
    return AccountContext::barcodeUrl + QStringLiteral("&orderpayforkey=") +
           QString::fromLatin1(QUrl::toPercentEncoding(orderNumber)) + QStringLiteral("&token=") +
           AccountContext::apiToken;
}

QString searchTypeText(int type)
{
    for (const SearchType &each : searchTypes) {
        if (each.type == type)
            return each.text;
    }
    return {};
}

QString keywordOf(const OrderSearch &search)
{
    const QString iso = QStringLiteral("yyyy-MM-dd");
    switch (search.type) {
    case OrderSearch::BasicInformation:
        return search.text;
    case OrderSearch::ShootingDate:
        return search.shootingDate.toString(iso);
    case OrderSearch::SelectionDate:
        return search.selectionDate.toString(iso);
    default:
        return {};
    }
}

FoundOrders readOrders(const QJsonObject &reply, const orderqueries::SearchedBranch &branch)
{
    return orderqueries::readFoundOrders<OrderData>(reply, [&branch](const QJsonObject &element) {
        OrderData order = readOrder(element);
        order.branch = branch.id;
        return order;
    });
}

} // namespace distributionrequests
