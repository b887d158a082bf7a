#include "fileimport/rules/importrequests.h"

#include "fileimport/rules/importrules.h"
#include "net/formbody.h"
#include "net/replyfields.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace importrequests {

namespace {

QString namesAsJson(const QVector<AnnouncedFile> &entries)
{
    QJsonArray array;
    for (const AnnouncedFile &entry : entries) {
        array.append(QJsonObject{{QStringLiteral("name"), entry.name},
                                 {QStringLiteral("size"), entry.size}});
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

ImportOrder readOrder(const QJsonObject &element, const orderqueries::SearchedBranch &branch)
{
    const auto count = [&element](const char *key) {
        return reply::number(element, QString::fromLatin1(key));
    };
    ImportOrder order;
    static_cast<orderqueries::OrderInfo &>(order) = orderqueries::readOrderInfo(element, branch);
    reply::readTexts(element, &order,
                     {{"comboname", &ImportOrder::comboName},
                      {"sampledate", &ImportOrder::sampleDate},
                      {"order_price", &ImportOrder::orderPrice},
                      {"role1name", &ImportOrder::role1Name},
                      {"role2name", &ImportOrder::role2Name}});
    if (order.role1Name.isEmpty())
        order.role1Name = order.role1;
    if (order.role2Name.isEmpty())
        order.role2Name = order.role2;
    order.numberYuanshidang = count("number_yuanshidang");
    order.numberYuanpian = count("number_yuanpian");
    order.numberJingxiu = count("number_jingxiu");
    for (const orderqueries::OrderPhoto &photo : qAsConst(order.images))
        order.selectedNames.append(photo.imgName);
    order.importPath = order.netPath;
    order.importPublicPath = branch.publicPath;
    return order;
}

} // namespace

FoundOrders readOrders(const QJsonObject &reply, const orderqueries::SearchedBranch &branch)
{
    const QString openypml = reply::text(reply, QStringLiteral("openypml"));
    const QString delyp = reply::text(reply, QStringLiteral("delyp"));
    int row = 0;
    return orderqueries::readFoundOrders<ImportOrder>(reply, [&](const QJsonObject &element) {
        ImportOrder order = readOrder(element, branch);
        order.openypml = openypml;
        order.delyp = delyp;
        order.rowIndex = row++;
        return order;
    });
}

QByteArray batchBody(ImportMode mode, const ImportOrder &order, const FolderContents &contents,
                     const orderqueries::Identity &identity)
{
    FormBody body;
    body.add(QStringLiteral("shopid"), identity.shopId)
        .add(QStringLiteral("imgnames"), namesAsJson(contents.images));
    switch (mode) {
    case ImportMode::Originals:
        body.add(QStringLiteral("rawimgnames"), namesAsJson(contents.rawImages))
            .add(QStringLiteral("type"), QStringLiteral("1"));
        break;
    case ImportMode::Retouched:
        body.add(QStringLiteral("type"), QStringLiteral("5"));
        break;
    }
    return body.add(QStringLiteral("order_photo_id"), order.orderPhotoId)
        .add(QStringLiteral("eid"), identity.employeeId)
        .add(QStringLiteral("superid"), identity.superId)
        .add(QStringLiteral("personid"), identity.employeeId)
        .add(QStringLiteral("person_id"), identity.employeeId)
        .add(QStringLiteral("orderid"), order.id)
        .add(QStringLiteral("localpath"), order.importPath)
        .bytes();
}

static QByteArray withAccount(FormBody body, const orderqueries::Identity &identity)
{
    return orderqueries::addIdentity(body, identity).bytes();
}

QByteArray orderPathBody(const ImportOrder &order, const orderqueries::Identity &identity)
{
    FormBody body;
    body.add(QStringLiteral("order_photo_id"), order.orderPhotoId)
        .add(QStringLiteral("person_id"), identity.employeeId)
        .add(QStringLiteral("path"), order.importPath);
    return withAccount(body, identity);
}

static QString typeOf(ImportMode mode, const ImportFile &file)
{
    static const QStringList photoSuffixes = {QStringLiteral("jpg"), QStringLiteral("JPG"),
                                              QStringLiteral("jpeg"), QStringLiteral("JPEG")};
    switch (mode) {
    case ImportMode::Originals:
        return photoSuffixes.contains(file.suffix) ? QStringLiteral("2") : QStringLiteral("1");
    case ImportMode::Retouched:
        return QStringLiteral("5");
    }
    Q_UNREACHABLE();
}

QByteArray photoBody(ImportMode mode, const ImportOrder &order, const ImportFile &file,
                     const orderqueries::Identity &identity)
{
    FormBody body;
    body.add(QStringLiteral("order_photo_id"), order.orderPhotoId)
        .add(QStringLiteral("person_id"), identity.employeeId)
        .add(QStringLiteral("size"), QString::number(file.size))
        .add(QStringLiteral("path"), joinWirePath(file.targetFolder, file.targetName()))
        .add(QStringLiteral("type"), typeOf(mode, file));
    return withAccount(body, identity);
}

BatchReply readBatchReply(const QJsonObject &reply)
{
    const auto names = [&reply](const char *key) {
        return reply::texts(reply, QString::fromLatin1(key), QStringLiteral("name"));
    };
    return {names("local_imgnames"), names("server_imgnames"), names("local_rawimgnames"),
            names("server_rawimgnames")};
}

QString resubmitQuestion(const ServiceReply &reply)
{
    if (reply.outcome != ServiceReply::Outcome::Refused)
        return QStringLiteral("网络不好，是否重新提交？如果取消，会停止导入。");
    const bool isReadable = !reply.object.isEmpty();
    return (isReadable ? reply.msg : QStringLiteral("服务端的答复过大，无法确认登记结果")) +
           QStringLiteral(" 是否重新提交?");
}

} // namespace importrequests
