#pragma once

#include <QHash>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

class QJsonObject;

/// A path as replies write it, the same for every way of writing it; for comparing alone.
QString pathInOneForm(QString replyPath);

/// One photo of an order's detail. Paths are in wire form, as the service wrote them.
struct DetailPhoto
{
    QString id;
    QString imgName;
    QString localPath;      ///< the full-size file on the share
    QString localPath90;    ///< its thumbnail
    QString picPath;        ///< in a product's photos: the file that goes into the product's folder
    QString url;            ///< of a small picture
    QString urlOriginal;    ///< "url_yuanpian"
    QString croppingImgUrl; ///< of the crop that the customer chose; empty without one
    bool downloaded = false; ///< what the service knows: "isdownload"
    QStringList remarks;     ///< of a marked photo, in order; line breaks stay

    /// The full-size file: localPath, in a product's photos picPath.
    const QString &source() const { return picPath.isEmpty() ? localPath : picPath; }
    /// The same, the same for every way of writing it.
    QString file() const;
    /// What tells the photo from the others of a list: its id, otherwise its file.
    QString key() const;
};

/// One product of an order, or a part of one. Everything is text because the service sends text.
struct DetailProduct
{
    QString id;
    QString isUrgent; ///< "0" when the reply says nothing
    QString isEms;    ///< how it is delivered
    QString goodName;
    QString goodTypeName;
    QString goodTypeId;
    QString goodType;
    QString goodPageNumber; ///< pages
    QString pNum;           ///< extra pages
    QString goodAmount;
    QString descr;      ///< for the studio
    QString authRemark; ///< for the outside
    QString goodRemark; ///< how to make it
    QString picPath;
    QString croppingImgUrl;
    QVector<DetailPhoto> imgs;
    QVector<DetailProduct> sonGood; ///< what it consists of; usually empty

    bool urgent() const { return isUrgent != QLatin1String("0"); }
    /// A set: it has parts, or is of the type that is laid out like one.
    bool isSet() const { return !sonGood.isEmpty() || goodTypeId == QLatin1String("40"); }
};

/// The photos of a product and of what it consists of, each with the part that it is in.
template <typename Visit> void forEachPhoto(const DetailProduct &product, const Visit &visit)
{
    for (const DetailPhoto &photo : product.imgs)
        visit(product, photo);
    for (const DetailProduct &part : product.sonGood)
        forEachPhoto(part, visit);
}

/// The whole reply to "orderphotodetail". What is missing or mistyped reads as empty.
struct OrderDetail
{
    /// The text and number members of "order", by the names that the service gives them; members
    /// beside "order" of the same kinds fill in what it lacks.
    QHash<QString, QString> order;
    QVector<DetailProduct> goods;       ///< in reply order
    QVector<DetailProduct> urgentGoods; ///< in reply order
    QVector<DetailPhoto> images;        ///< chosen by the customers
    QVector<DetailPhoto> imagesRudi;    ///< archive photos
    QVector<DetailPhoto> images11;      ///< basic retouch of the chosen photos, "images_1_1"
    QVector<DetailPhoto> images10;      ///< basic retouch of the rejected shots, "images_1_0"
    QVector<DetailPhoto> imagesJingxiu; ///< fine retouch
    QVector<DetailPhoto> imagesBiaoji;  ///< marked by the customers, with remarks
    QString shopName;
    QString shopDisclaimer;
    QString downTxt; ///< what the delivery text file holds

    /// A member of the order; empty when there is none.
    QString value(const char *key) const { return order.value(QString::fromLatin1(key)); }
    /// All products, the urgent ones first.
    QVector<DetailProduct> products() const { return urgentGoods + goods; }
};
/// Shared read-only by the tasks of one order.
using OrderDetailPtr = std::shared_ptr<const OrderDetail>;
Q_DECLARE_METATYPE(OrderDetailPtr)

OrderDetail readOrderDetail(const QJsonObject &reply);
inline OrderDetailPtr detailOf(const QJsonObject &reply)
{
    return std::make_shared<const OrderDetail>(readOrderDetail(reply));
}

/// One photo of a reply, as the lists of orders and of details carry it.
DetailPhoto readDetailPhoto(const QJsonObject &element);
/// Ids are numbers as a rule; any other are put into some order that stays.
bool isSmallerId(const QString &one, const QString &other);
/// \a photos by their ids, otherwise by their files: in this order they share out the names of a
/// folder, so that a photo keeps its own whatever order the service lists them in.
QVector<DetailPhoto> byIds(QVector<DetailPhoto> photos);
/// Those of a product and of what it consists of.
QVector<DetailPhoto> photosById(const DetailProduct &product);
QVector<DetailPhoto> readDetailPhotos(const QJsonObject &parent, const QString &key);
