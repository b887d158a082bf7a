#include "fuzz/seeds/seeds.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

namespace {

/// "id=1|name=王" as the members of an object.
QJsonObject object(const char *members)
{
    QJsonObject made;
    const QStringList pairs = QString::fromUtf8(members).split(QLatin1Char('|'));
    for (const QString &pair : pairs)
        made.insert(pair.section(QLatin1Char('='), 0, 0), pair.section(QLatin1Char('='), 1));
    return made;
}

QByteArray text(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// A good reply whose member \a name is \a elements.
QJsonObject replyOf(const char *name, const QJsonArray &elements)
{
    QJsonObject reply = object("code=1|message=好");
    reply.insert(QString::fromLatin1(name), elements);
    return reply;
}

QJsonObject photo()
{
    return object("id=11|img_name=IMG_1.JPG|url=http://s/1.jpg|type=1|isdownload=1|remark=眼睛|"
                  "localpath=\\\\nas\\import\\2024\\05\\07-1-A\\原片\\IMG_1.JPG|"
                  "localpath90=\\\\nas\\90\\1.jpg|localpath_90=\\\\nas\\90\\1.jpg|"
                  "localpath_1920=\\\\nas\\1920\\1.jpg|picpath=\\\\nas\\p\\1.jpg|"
                  "url_yuanpian=http://s/y.jpg|cropping_imgurl=http://s/c.jpg");
}

QJsonObject order()
{
    QJsonObject made = object(
        "id=1|order_photo_id=2|orderpayforkey=TS1|servicetimes=1|mname=李|wname=王|mphone=1|"
        "wphone=2|shotdate=2024-5-7|selectphototime=2024-06-01|role1=摄|role1name=摄|role2=化|"
        "role2name=化|selectphotoname=选|issample=1|tiaosename=调|storesname=店|"
        "netpath=\\\\nas\\import\\2024\\05\\07-1-A|picpathnew=|imagesize_small=90|"
        "imagesize_middle=190|imagesize_big=1920|fulfil_time=2024-07-01|comboname=套|"
        "sampledate=2024-5-8|order_price=100|number_yuanshidang=1|number_yuanpian=2|"
        "number_jingxiu=3|openypml=1|delyp=1|iszsysd=1|iszsjx=1|importpath=D:\\a");
    made.insert(QStringLiteral("images"), QJsonArray{photo()});
    made.insert(QStringLiteral("images_taipian"), QJsonArray{photo()});
    made.insert(QStringLiteral("images_yuanpian"), QJsonArray{photo()});
    made.insert(QStringLiteral("images_yuanshidang"), QJsonArray{photo()});
    return made;
}

QJsonObject product()
{
    QJsonObject made =
        object("id=5|isurgent=1|isems=自取|goodname=相册|goodtypename=册|goodtypeid=40|goodtype=1|"
               "goodpagenumber=10|p_num=2|goodamount=1|descr=d|auth_remark=a|goodremark=g|"
               "picpath=\\\\nas\\p\\1.jpg|cropping_imgurl=http://s/c.jpg");
    made.insert(QStringLiteral("imgs"), QJsonArray{photo()});
    return made;
}

QJsonObject detail()
{
    QJsonObject set = product();
    set.insert(QStringLiteral("son_good"), QJsonArray{product()});
    QJsonObject made = replyOf("goods", {set, product()});
    made.insert(QStringLiteral("urgentgoods"), QJsonArray{product()});
    made.insert(QStringLiteral("order"),
                object("orderpayforkey=TS1|servicetimes=1|mname=李|wname=王|pickuptypename=自取|"
                       "isurgent=1|isurgenttime=7-1|pickuptime=8-1|factoryname=厂|isems=自取"));
    for (const char *list :
         {"images", "images_rudi", "images_1_1", "images_1_0", "images_jingxiu", "images_biaoji"})
        made.insert(QString::fromLatin1(list), QJsonArray{photo(), photo()});
    for (const char *value : {"shopname", "shopdisclaimer", "down_txt"})
        made.insert(QString::fromLatin1(value), QStringLiteral("文"));
    return made;
}

QJsonObject batchReply()
{
    QJsonObject reply = object("code=1");
    for (const char *list :
         {"local_imgnames", "server_imgnames", "local_rawimgnames", "server_rawimgnames"})
        reply.insert(QString::fromLatin1(list), QJsonArray{object("picname=IMG_1.JPG|size=1")});
    return reply;
}

QByteArray nested(int levels)
{
    return "{\"code\":\"1\",\"data\":" + QByteArray(levels, '[') + QByteArray(levels, ']') + "}";
}

} // namespace

void addReplySeeds(Seeds *seeds)
{
    QMap<QString, QByteArray> &replies = (*seeds)[QStringLiteral("replies")];
    QJsonObject login = replyOf(
        "shop_data", {object("id=7|name=店|goodsfoldernamerule=[]|importpublicpath=\\\\nas\\i")});
    login.insert(QStringLiteral("SUPERID"), 1);
    login.insert(QStringLiteral("EID"), QStringLiteral("2"));
    login.insert(QStringLiteral("UID"), QStringLiteral("3"));
    replies[QStringLiteral("login")] = text(login);
    replies[QStringLiteral("switch")] = text(
        object("code=1|SUPERID=1|EID=2|importpublicpath=D:\\i|is_all_del_photo=1|issjfenjianms=1"));
    replies[QStringLiteral("persons")] = text(replyOf("persons", {object("id=1|name=王")}));
    replies[QStringLiteral("orders")] = text(replyOf("data", {order(), order(), QJsonValue(), 3}));
    replies[QStringLiteral("order-of-no-values")] = text(replyOf("data", {object("id=1")}));
    replies[QStringLiteral("order-of-numbers")] =
        R"({"code":"1","data":[{"id":1e300,"order_photo_id":-0.5,"shotdate":20240507}]})";
    QJsonObject photos = replyOf("images_yuanpian", {photo(), photo()});
    photos.insert(QStringLiteral("images_yuanshidang"), QJsonArray{photo()});
    photos.insert(QStringLiteral("timestamp"), QStringLiteral("1"));
    replies[QStringLiteral("photo-list")] = text(photos);
    replies[QStringLiteral("announcement")] = text(batchReply());
    replies[QStringLiteral("detail")] = text(detail());
    replies[QStringLiteral("refusal")] = text(object("code=0|message=不|msg=否"));
    replies[QStringLiteral("deeply-nested")] = nested(600);
    (*seeds)[QStringLiteral("namingrule")][QStringLiteral("detail")] =
        "[{\"name\":\"产品名称\",\"key\":\"name\",\"separator\":\"_\"},{\"key\":\"id\"}]\n" +
        text(detail());
}
