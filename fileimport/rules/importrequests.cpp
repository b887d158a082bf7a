#include "fileimport/rules/importrequests.h"

#include "fileimport/rules/importrules.h"
#include "net/formbody.h"
#include "net/replyfields.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

namespace importrequests {

namespace {

QString namesAsJson(const QVector<FolderEntry> &entries)
{
    QJsonArray array;
    for (const FolderEntry &entry : entries) {
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
    for (const orderqueries::PhotoEntry &photo : qAsConst(order.images))
        order.selectedNames.append(photo.imgName);
    order.importPath = order.netPath;
    order.importPublicPath = branch.publicPath;
    return order;
}

/// What is in one list and not in the other, either way.
QStringList difference(const QStringList &local, const QStringList &server)
{
    const QSet<QString> known(server.cbegin(), server.cend());
    const QSet<QString> announced(local.cbegin(), local.cend());
    QStringList differing;
    for (const QString &name : local) {
        if (!known.contains(name))
            differing.append(name);
    }
    for (const QString &name : server) {
        if (!announced.contains(name))
            differing.append(name);
    }
    return differing;
}

QString noticeSection(const QString &heading, const QStringList &names)
{
    if (names.isEmpty())
        return {};
    QStringList shown = names.mid(0, BoxText::shownLines);
    if (names.size() > shown.size())
        shown.append(BoxText::countLine(names.size()));
    return heading + QStringLiteral("<br/><span style=\"font-size: 23px; color: #FF0000;\">") +
           shown.join(QStringLiteral(", ")).toHtmlEscaped() + QStringLiteral("</span>");
}

struct Differences
{
    QStringList images;
    QStringList rawImages;
};

Differences differencesOf(ImportMode mode, const BatchReply &reply)
{
    Differences differences{difference(reply.localImages, reply.serverImages), {}};
    if (mode == ImportMode::Originals)
        differences.rawImages = difference(reply.localRawImages, reply.serverRawImages);
    return differences;
}

} // namespace

OrderList readOrders(const QJsonObject &reply, const orderqueries::SearchedBranch &branch)
{
    const QString openypml = reply::text(reply, QStringLiteral("openypml"));
    const QString delyp = reply::text(reply, QStringLiteral("delyp"));
    int row = 0;
    return orderqueries::readOrderList<ImportOrder>(reply, [&](const QJsonObject &element) {
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

BoxText mismatchNotice(ImportMode mode, const ImportOrder &order, const BatchReply &reply)
{
    const auto [images, rawImages] = differencesOf(mode, reply);
    if (images.isEmpty() && rawImages.isEmpty())
        return QString();

    const QString title =
        QStringLiteral("<span style=\"font-size: 26px; font-weight: 600; color: #000; \"> 订单: ") +
        (order.orderPayForKey + QLatin1Char('-') + order.serviceTimes).toHtmlEscaped();
    const QString html =
        mode == ImportMode::Retouched
            ? title +
                  noticeSection(QStringLiteral("<br/> <span style=\"font-size: 25px; font-weight: "
                                               "550 \">以下精修照片需要重新导入:</span>"),
                                images)
            : title +
                  noticeSection(
                      QStringLiteral("<br/> <span style=\"font-size: 25px; font-weight: 550 "
                                     "\">以下原片需要重新导入:</span>"),
                      images) +
                  noticeSection(
                      QStringLiteral("<br/> <span style=\"font-size: 25px; font-weight: 550 "
                                     "\">以下原始档需要重新导入:</span>"),
                      rawImages);
    if (qMax(images.size(), rawImages.size()) <= BoxText::shownLines)
        return BoxText::rich(html);
    const QStringList all = QStringList{QStringLiteral("订单: %1-%2\n以下照片需要重新导入:")
                                            .arg(order.orderPayForKey, order.serviceTimes)} +
                            images + rawImages;
    return BoxText::rich(html, [all] { return all.join(QLatin1Char('\n')); });
}

QVector<int> mismatchedFiles(ImportMode mode, const ImportOrder &order, const BatchReply &reply)
{
    const Differences differences = differencesOf(mode, reply);
    // On Windows a replaced file keeps the case of its earlier name.
    const auto keysOf = [](const QStringList &names) {
        QSet<QString> keys;
        for (const QString &name : names)
            keys.insert(name.toCaseFolded());
        return keys;
    };
    const QSet<QString> images = keysOf(differences.images);
    const QSet<QString> rawImages = keysOf(differences.rawImages);
    const QStringList folders = importrules::subFolders(mode);
    QVector<int> positions;
    for (int index = 0; index < order.files.size(); ++index) {
        const ImportFile &file = order.files.at(index);
        const bool isImage = importrules::subFolderFor(mode, file.suffix) == folders.first();
        if (file.state == ImportFile::Imported &&
            (isImage ? images : rawImages).contains(file.targetName().toCaseFolded()))
            positions.append(index);
    }
    return positions;
}

} // namespace importrequests
