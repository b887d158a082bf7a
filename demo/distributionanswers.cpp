#include "demo/answerparts.h"
#include "demo/answers.h"
#include "demo/distributionmaterial.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>

// What is answered to the design distribution and the downloads.
//
// A photo of a detail carries id, img_name, localpath and localpath90 (its full-size file and its
// thumbnail on the share), url, url_yuanpian and isdownload ("1" once a client has reported it). In
// a product's imgs picpath names the file that goes into the product's folder, and cropping_imgurl
// the picture of the crop that the customers chose. images_biaoji are the marked photos: url shows
// the marks, remark lists {"text": …}.

namespace demo {

namespace {

using Texts = QVector<std::pair<const char *, QString>>;

void put(QJsonObject *object, const Texts &texts)
{
    for (const auto &[name, value] : texts)
        object->insert(text(name), value);
}

QString rootOf(const Order &order, const Shop &shop)
{
    if (!order.netPath.isEmpty())
        return order.netPath;
    return shop.publicRoot + QStringLiteral("\\选片\\%1-%2").arg(order.number, order.service);
}

class DetailWriter
{
public:
    DetailWriter(const Order &order, const Shop &shop, QString serviceUrl)
        : order_(order)
        , shop_(shop)
        , serviceUrl_(std::move(serviceUrl))
        , root_(rootOf(order, shop))
        , set_(distributionSet(order))
    {
    }

    void writeTo(QJsonObject *reply) const
    {
        (*reply)[text("order")] = orderMembers();
        (*reply)[text("shopname")] = shop_.name;
        (*reply)[text("shopdisclaimer")] =
            text("温馨提示：照片及设计稿一经客人签字确认，后期制作不再更改。");
        (*reply)[text("down_txt")] =
            QStringLiteral("收件人：%1\n电话：%2\n地址：云海省临江市花园路 8 号")
                .arg(order_.womanName, order_.womanPhone);
        (*reply)[text("images")] = entries(set_.chosen);
        (*reply)[text("images_rudi")] = entries(set_.archive);
        (*reply)[text("images_1_1")] = entries(set_.basic);
        (*reply)[text("images_1_0")] = entries(set_.rejected);
        (*reply)[text("images_jingxiu")] = entries(set_.retouched);
        (*reply)[text("images_biaoji")] = marked();
        (*reply)[text("goods")] = goods();
        (*reply)[text("urgentgoods")] = urgentGoods();
    }

    QJsonArray entries(const QVector<DistributionPhoto> &photos) const
    {
        QJsonArray array;
        for (const DistributionPhoto &photo : photos)
            array.append(entry(photo));
        return array;
    }
    const DistributionSet &set() const { return set_; }

private:
    QString path(const DistributionPhoto &photo, const char *variant) const
    {
        return QStringLiteral("%1\\%2\\%3\\%4")
            .arg(root_, photo.folder, text(variant), fileNameOnShare(photo.name));
    }
    QString picture(const char *kind, const QString &id) const
    {
        return QStringLiteral("%1/distribution/%2/%3.jpg").arg(serviceUrl_, text(kind), id);
    }

    QJsonObject entry(const DistributionPhoto &photo) const
    {
        QJsonObject object;
        put(&object,
            {{"id", photo.id},
             {"img_name", photo.name},
             {"localpath", path(photo, "all")},
             {"localpath90", path(photo, "90")},
             {"url", picture("small", photo.id)},
             {"url_yuanpian", picture("full", photo.id)},
             {"isdownload", text(order_.downloadedPhotos.contains(photo.id) ? "1" : "0")}});
        return object;
    }

    QJsonArray marked() const
    {
        QJsonArray array;
        if (set_.chosen.isEmpty())
            return array;
        QJsonObject photo = entry(set_.chosen.first());
        photo[text("url")] = picture("marked", set_.chosen.first().id);
        photo[text("remark")] =
            QJsonArray{QJsonObject{{text("text"), text("脸部略瘦，<保留> 酒窝")}},
                       QJsonObject{{text("text"), text("裙摆右侧褶皱修平\n背景杂物去掉")}}};
        array.append(photo);
        return array;
    }

    // first, count: which of the chosen photos.
    QJsonObject product(int number, const char *name, int first, int count,
                        const Texts &more = {}) const
    {
        QJsonObject object;
        put(&object, {{"id", QStringLiteral("%1%2").arg(order_.id).arg(number)},
                      {"isurgent", text("0")},
                      {"isems", text("快递")},
                      {"goodname", text(name)},
                      {"goodtypename", text("相册")},
                      {"goodtypeid", text("12")},
                      {"goodtype", text("1")},
                      {"goodpagenumber", text("20")},
                      {"p_num", text("2")},
                      {"goodamount", text("1")},
                      {"descr", text("封面用第一张")},
                      {"auth_remark", text("可作样册")},
                      {"goodremark", text("水晶封面\n烫金")},
                      {"picpath", QString()},
                      {"cropping_imgurl", QString()}});
        put(&object, more);
        QJsonArray imgs;
        const QVector<DistributionPhoto> photos = set_.chosen.mid(first, count);
        for (const DistributionPhoto &photo : photos) {
            QJsonObject img = entry(photo);
            img[text("picpath")] = path(photo, "all");
            img[text("cropping_imgurl")] =
                imgs.isEmpty() && number == 1 ? picture("crop", photo.id) : QString();
            imgs.append(img);
        }
        object[text("imgs")] = imgs;
        object[text("son_good")] = QJsonArray();
        return object;
    }

    // Two products of one name, a set with parts, one that is laid out like a set, and one that
    // nobody has chosen photos for; the last chosen photo is in none of them.
    QJsonArray goods() const
    {
        QJsonObject set = product(3, "家庭套装", 0, 0, {{"goodtypename", text("套装")}});
        set[text("son_good")] =
            QJsonArray{product(31, "摆台 8寸", 0, 1, {{"goodtypename", text("摆台")}}),
                       product(32, "钥匙扣", 1, 1, {{"goodtypename", text("小件")}})};
        return {product(1, "纪念相册 12寸", 0, 2),
                product(2, "纪念相册 12寸", 1, set_.chosen.size() - 2), set,
                product(4, "组合框", 0, 2, {{"goodtypeid", text("40")}}), product(5, "挂历", 0, 0)};
    }

    QJsonArray urgentGoods() const
    {
        return {product(
            6, "迎宾海报", 0, 1,
            {{"isurgent", text("1")}, {"goodtypename", text("海报")}, {"goodamount", text("2")}})};
    }

    QJsonObject orderMembers() const;

    const Order &order_;
    const Shop &shop_;
    QString serviceUrl_;
    QString root_;
    DistributionSet set_;
};

QJsonObject DetailWriter::orderMembers() const
{
    QJsonObject members;
    put(&members, {{"id", order_.id},
                   {"order_photo_id", order_.photoSetId},
                   {"orderpayforkey", order_.number},
                   {"servicetimes", order_.service},
                   {"servicecount", text("2")},
                   {"mname", order_.manName},
                   {"wname", order_.womanName},
                   {"mphone", order_.manPhone},
                   {"wphone", order_.womanPhone},
                   {"pickuptypename", text("到店自取")},
                   {"pickuptime", text("2026-01-15")},
                   {"isurgent", text("0")},
                   {"isurgenttime", text("2025-12-20")},
                   {"urgentdatearea", text("上午")},
                   {"factoryname", text("晨光制作厂")},
                   {"isems", text("快递")},
                   {"goodtypeid", text("12")},
                   {"s2_name", order_.package},
                   {"mssid", shop_.name},
                   {"servershopid", shop_.name},
                   {"booktime", text("2025-08-02")},
                   {"photodate", order_.shotDate},
                   {"samplestarttime", text("10")},
                   {"samplestartmin", text("30")},
                   {"selectphotodate", order_.selectionTime.left(10)},
                   {"selectphototime", order_.selectionTime},
                   {"checktruing", text("2025-11-05")},
                   {"kanjinxiuarea", text("下午")},
                   {"comparedate", text("2025-11-20")},
                   {"kanbanarea", text("上午")},
                   {"booksuccess", text("秦悦")},
                   {"wxname", text("陶然")},
                   {"tuiguangname", text("许诺")},
                   {"selectphoto", order_.consultant},
                   {"selectphotoname", order_.consultant},
                   {"yqnumber", text("12")},
                   {"goodpnumber", text("40")},
                   {"vipphotonumber", text("30")}});
    put(&members, {{"yx_number", QString::number(order_.chosenPhotos.size())},
                   {"role1", order_.photographer},
                   {"role2", order_.makeUpArtist},
                   {"role3", text("阿明")},
                   {"role4", text("小艾")},
                   {"role16", text("方舟")},
                   {"role17", text("罗杰")},
                   {"role6name", text("沈默")},
                   {"role9name", order_.retoucher},
                   {"role12name", order_.consultant},
                   {"mmail", text("groom@example.com")},
                   {"wmail", text("bride@example.com")},
                   {"order_price", order_.price},
                   {"twosales", text("1200")},
                   {"dept", text("0")},
                   {"pay_type", text("微信")},
                   {"tiaose", text("唐棠")},
                   {"tiaoxiu", text("黎明")},
                   {"sheji", text("江南")},
                   {"getphotoarea", text("上午")},
                   {"getphotodate_html", text("2026-01-15<br><b>周四</b>")},
                   {"buynumber", text("5")},
                   {"activenumber", text("3")},
                   {"morephotonumber", text("2")},
                   {"recipients", order_.womanName},
                   {"sj_tel", order_.womanPhone},
                   {"provinceid", text("云海省")},
                   {"cityid", text("临江市")},
                   {"countyid", text("东湖区")},
                   {"areaname", text("花园街道")},
                   {"address", text("花园路 8 号")},
                   {"orderdescr", text("整体色调偏暖\n不要裁掉头饰")},
                   {"consumption_statement", text("加购精修 2 张，已付清")},
                   {"orderpicdescr", text("新娘手臂 <微调>，肤色 & 光线自然")}});
    return members;
}

} // namespace

// order_photo_id → order (an object of texts), shopname, shopdisclaimer, down_txt, goods,
// urgentgoods, images, images_rudi, images_1_1, images_1_0, images_jingxiu, images_biaoji. The
// order's pictures lie on the share from then on.
QJsonObject Answers::orderDetail(const Fields &fields)
{
    QString problem;
    Order *order = orderOf(fields, &problem);
    if (!order)
        return refusal(problem);
    const Shop &shop = *studio_.shop(order->shopId);
    QJsonObject reply = success();
    const DetailWriter detail(*order, shop, serviceUrl_);
    detail.writeTo(&reply);
    if (!order->hasMaterial) {
        order->hasMaterial = true;
        writeDistributionSet(detail.set(), paths_.toDisk(rootOf(*order, shop)));
    }
    return reply;
}

// id (of a photo) → nothing beyond success.
QJsonObject Answers::downloadSuccess(const Fields &fields)
{
    const QString id = field(fields, "id");
    Order *order = id.isEmpty() ? nullptr : studio_.orderByPhoto(id);
    if (!order || order->shopId != field(fields, "shopid"))
        return refusal(QStringLiteral("照片不存在: %1").arg(id));
    if (!order->downloadedPhotos.contains(id))
        order->downloadedPhotos << id;
    return success();
}

// goodsfoldernamerule (a JSON array of objects with name, key and separator) → nothing beyond
// success; the login reply tells the branch's rule.
QJsonObject Answers::saveNamingRule(const Fields &fields)
{
    const QString rule = field(fields, "goodsfoldernamerule");
    if (!QJsonDocument::fromJson(rule.toUtf8()).isArray())
        return refusal(QStringLiteral("产品文件夹命名规则格式不正确"));
    studio_.setNamingRule(field(fields, "shopid"), rule);
    return success();
}

void Answers::addDistributionMembers(const Order &order, QJsonObject *object) const
{
    const Shop *shop = studio_.shop(order.shopId);
    const DetailWriter detail(order, *shop, serviceUrl_);
    object->insert(text("images_1_1"), detail.entries(detail.set().basic));
    object->insert(text("images_1_0"), detail.entries(detail.set().rejected));
    object->insert(text("iszsysd"), text("0"));
    object->insert(text("iszsjx"), text("0"));
}

QByteArray distributionPicture(const QString &path)
{
    const bool big = path.contains(QStringLiteral("/crop/"));
    return smallPhoto(path, big ? 400 : 300, big ? 400 : 200);
}

} // namespace demo
