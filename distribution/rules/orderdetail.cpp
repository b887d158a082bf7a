#include "distribution/rules/orderdetail.h"

#include "net/replyfields.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

/// Nothing a studio sells is nested deeper; a reply that is must not take the stack with it.
constexpr int deepestSet = 4;

QVector<DetailProduct> readProducts(const QJsonObject &parent, const QString &key, int depth)
{
    QVector<DetailProduct> products;
    if (depth > deepestSet)
        return products;
    const auto elements = reply::objects(parent, key);
    for (const QJsonObject &element : elements) {
        DetailProduct product;
        reply::readTexts(element, &product,
                         {{"id", &DetailProduct::id},
                          {"isurgent", &DetailProduct::isUrgent},
                          {"isems", &DetailProduct::isEms},
                          {"goodname", &DetailProduct::goodName},
                          {"goodtypename", &DetailProduct::goodTypeName},
                          {"goodtypeid", &DetailProduct::goodTypeId},
                          {"goodtype", &DetailProduct::goodType},
                          {"goodpagenumber", &DetailProduct::goodPageNumber},
                          {"p_num", &DetailProduct::pNum},
                          {"goodamount", &DetailProduct::goodAmount},
                          {"descr", &DetailProduct::descr},
                          {"auth_remark", &DetailProduct::authRemark},
                          {"goodremark", &DetailProduct::goodRemark},
                          {"picpath", &DetailProduct::picPath},
                          {"cropping_imgurl", &DetailProduct::croppingImgUrl}});
        if (product.isUrgent.isEmpty())
            product.isUrgent = QStringLiteral("0");
        product.imgs = readDetailPhotos(element, QStringLiteral("imgs"));
        product.sonGood = readProducts(element, QStringLiteral("son_good"), depth + 1);
        products.append(product);
    }
    return products;
}

QStringList readRemarks(const QJsonObject &photo)
{
    const QJsonValue remark = photo.value(QLatin1String("remark"));
    if (remark.isString())
        return remark.toString().isEmpty() ? QStringList() : QStringList(remark.toString());
    QStringList remarks;
    const QJsonArray entries = remark.toArray();
    for (const QJsonValue &entry : entries) {
        const QString text = entry.isObject()
                                 ? reply::text(entry.toObject(), QStringLiteral("text"))
                                 : entry.toString();
        if (!text.isEmpty())
            remarks.append(text);
    }
    return remarks;
}

void takeTexts(const QJsonObject &object, QHash<QString, QString> *texts)
{
    for (auto member = object.begin(); member != object.end(); ++member) {
        const bool known = !texts->value(member.key()).isEmpty();
        if (!known && (member->isString() || member->isDouble()))
            texts->insert(member.key(), reply::text(object, member.key()));
    }
}

} // namespace

QString pathInOneForm(QString replyPath)
{
    return replyPath.replace(QLatin1String("\\/"), QLatin1String("/"))
        .replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString DetailPhoto::file() const
{
    return pathInOneForm(source());
}

QString DetailPhoto::key() const
{
    if (!id.isEmpty())
        return id;
    return source().isEmpty() ? imgName : file();
}

DetailPhoto readDetailPhoto(const QJsonObject &element)
{
    DetailPhoto photo;
    reply::readTexts(element, &photo,
                     {{"id", &DetailPhoto::id},
                      {"img_name", &DetailPhoto::imgName},
                      {"localpath", &DetailPhoto::localPath},
                      {"localpath90", &DetailPhoto::localPath90},
                      {"picpath", &DetailPhoto::picPath},
                      {"url", &DetailPhoto::url},
                      {"url_yuanpian", &DetailPhoto::urlOriginal},
                      {"cropping_imgurl", &DetailPhoto::croppingImgUrl}});
    photo.downloaded = reply::text(element, QStringLiteral("isdownload")) == QLatin1String("1");
    photo.remarks = readRemarks(element);
    return photo;
}

QVector<DetailPhoto> readDetailPhotos(const QJsonObject &parent, const QString &key)
{
    QVector<DetailPhoto> photos;
    const auto elements = reply::objects(parent, key);
    photos.reserve(elements.size());
    for (const QJsonObject &element : elements)
        photos.append(readDetailPhoto(element));
    return photos;
}

OrderDetail readOrderDetail(const QJsonObject &reply)
{
    OrderDetail detail;
    takeTexts(reply.value(QLatin1String("order")).toObject(), &detail.order);
    QJsonObject beside = reply;
    for (const char *verdict : {"code", "message", "msg"})
        beside.remove(QString::fromLatin1(verdict));
    takeTexts(beside, &detail.order);
    detail.goods = readProducts(reply, QStringLiteral("goods"), 0);
    detail.urgentGoods = readProducts(reply, QStringLiteral("urgentgoods"), 0);
    detail.images = readDetailPhotos(reply, QStringLiteral("images"));
    detail.imagesRudi = readDetailPhotos(reply, QStringLiteral("images_rudi"));
    detail.images11 = readDetailPhotos(reply, QStringLiteral("images_1_1"));
    detail.images10 = readDetailPhotos(reply, QStringLiteral("images_1_0"));
    detail.imagesJingxiu = readDetailPhotos(reply, QStringLiteral("images_jingxiu"));
    detail.imagesBiaoji = readDetailPhotos(reply, QStringLiteral("images_biaoji"));
    detail.shopName = detail.value("shopname");
    detail.shopDisclaimer = detail.value("shopdisclaimer");
    detail.downTxt = detail.value("down_txt");
    return detail;
}

bool isSmallerId(const QString &one, const QString &other)
{
    return one.size() != other.size() ? one.size() < other.size() : one < other;
}

QVector<DetailPhoto> byIds(QVector<DetailPhoto> photos)
{
    std::stable_sort(photos.begin(), photos.end(), [](const auto &one, const auto &other) {
        return one.id == other.id ? one.file() < other.file() : isSmallerId(one.id, other.id);
    });
    return photos;
}

QVector<DetailPhoto> photosById(const DetailProduct &product)
{
    QVector<DetailPhoto> photos;
    forEachPhoto(product, [&photos](const DetailProduct &, const DetailPhoto &photo) {
        photos.append(photo);
    });
    return byIds(photos);
}
