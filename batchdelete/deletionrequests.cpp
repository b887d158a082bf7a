#include "batchdelete/deletionrequests.h"

#include "net/formbody.h"
#include "net/replyfields.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

namespace deletionrequests {

namespace {

BatchDeleteOrderInfo readOrder(const QJsonObject &element)
{
    const auto text = [&element](const char *key) {
        return reply::text(element, QString::fromLatin1(key));
    };
    BatchDeleteOrderInfo order;
    order.id = text("id");
    order.orderPhotoId = text("order_photo_id");
    order.orderPayForKey = text("orderpayforkey");
    order.serviceTimes = text("servicetimes");
    order.mname = text("mname");
    order.wname = text("wname");
    order.role1 = text("role1");
    order.tiaoseName = text("tiaosename");
    order.fulfilTime = text("fulfil_time");
    order.netPath = text("netpath");
    return order;
}

FormBody accountBody(const orderqueries::Identity &identity, const QString &orderPhotoId)
{
    FormBody body;
    body.add(QStringLiteral("shopid"), identity.shopId)
        .add(QStringLiteral("eid"), identity.employeeId)
        .add(QStringLiteral("superid"), identity.superId)
        .add(QStringLiteral("personid"), identity.employeeId)
        .add(QStringLiteral("order_photo_id"), orderPhotoId);
    return body;
}

} // namespace

OrderList readOrders(const QJsonObject &reply)
{
    const QJsonValue data = reply.value(QLatin1String("data"));
    OrderList list{data.isArray(), data.toArray().size(), {}};
    QSet<QString> ids;
    const auto elements = reply::objects(reply, QStringLiteral("data"));
    for (const QJsonObject &element : elements) {
        const BatchDeleteOrderInfo order = readOrder(element);
        if (order.id.isEmpty() || ids.contains(order.id))
            continue;
        ids.insert(order.id);
        list.orders.append(order);
    }
    return list;
}

QByteArray announceBody(const orderqueries::Identity &identity, const QString &orderPhotoId,
                        const QVector<BatchDeleteFileInfo> &files)
{
    QJsonArray pics;
    for (const BatchDeleteFileInfo &file : files) {
        if (file.kept)
            continue;
        pics.append(QJsonObject{{QStringLiteral("picpath"), file.fullPath()},
                                {QStringLiteral("picname"), file.fileName},
                                {QStringLiteral("picshortpath"), file.shortPath()}});
    }
    const QByteArray json = QJsonDocument(pics).toJson(QJsonDocument::Compact);
    return accountBody(identity, orderPhotoId)
        .add(QStringLiteral("pics"), QString::fromUtf8(json))
        .bytes();
}

QByteArray reportBody(const orderqueries::Identity &identity, const QString &orderPhotoId,
                      const BatchDeleteFileInfo &file)
{
    return accountBody(identity, orderPhotoId)
        .add(QStringLiteral("picpath"), file.fullPath())
        .add(QStringLiteral("picname"), file.fileName)
        .bytes();
}

} // namespace deletionrequests
