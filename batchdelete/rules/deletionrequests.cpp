#include "batchdelete/rules/deletionrequests.h"

#include "net/formbody.h"
#include "net/replyfields.h"

#include <QJsonDocument>

namespace deletionrequests {

namespace {

BatchDeleteOrderInfo readOrder(const QJsonObject &element)
{
    BatchDeleteOrderInfo order;
    reply::readTexts(element, &order,
                     {{"id", &BatchDeleteOrderInfo::id},
                      {"order_photo_id", &BatchDeleteOrderInfo::orderPhotoId},
                      {"orderpayforkey", &BatchDeleteOrderInfo::orderPayForKey},
                      {"servicetimes", &BatchDeleteOrderInfo::serviceTimes},
                      {"mname", &BatchDeleteOrderInfo::mname},
                      {"wname", &BatchDeleteOrderInfo::wname},
                      {"role1", &BatchDeleteOrderInfo::role1},
                      {"tiaosename", &BatchDeleteOrderInfo::tiaoseName},
                      {"fulfil_time", &BatchDeleteOrderInfo::fulfilTime},
                      {"netpath", &BatchDeleteOrderInfo::netPath}});
    return order;
}

FormBody accountBody(const orderqueries::Identity &identity, const QString &orderPhotoId)
{
    FormBody body;
    return orderqueries::addIdentity(body, identity)
        .add(QStringLiteral("order_photo_id"), orderPhotoId);
}

} // namespace

FoundOrders readOrders(const QJsonObject &reply, const orderqueries::SearchedBranch &branch)
{
    return orderqueries::readFoundOrders<BatchDeleteOrderInfo>(
        reply, [&branch](const QJsonObject &element) {
            BatchDeleteOrderInfo order = readOrder(element);
            order.branch = branch.id;
            return order;
        });
}

QByteArray announceBody(const orderqueries::Identity &identity, const QString &orderPhotoId,
                        const QVector<BatchDeleteFileInfo> &files)
{
    // Piece by piece: as a document a million files would take a gigabyte.
    QByteArray pics = "[";
    for (const BatchDeleteFileInfo &file : files) {
        if (file.kept || file.isRemoved())
            continue;
        if (pics.size() > 1)
            pics += ',';
        pics += QJsonDocument(QJsonObject{{QStringLiteral("picpath"), file.fullPath()},
                                          {QStringLiteral("picname"), file.fileName},
                                          {QStringLiteral("picshortpath"), file.shortPath()}})
                    .toJson(QJsonDocument::Compact);
    }
    pics += ']';
    return accountBody(identity, orderPhotoId).addUtf8(QStringLiteral("pics"), pics).bytes();
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
