#include "demo/orderbook.h"

#include <QRandomGenerator>

#include <utility>

namespace demo {

namespace {

QString picked(QRandomGenerator &random, const QStringList &choice)
{
    return choice.at(random.bounded(choice.size()));
}

QString name(QRandomGenerator &random, const QStringList &givenNames)
{
    static const QStringList families =
        QStringLiteral("王 李 张 刘 陈 杨 赵 黄 周 吴 徐 孙 胡 朱 高 林 何 郭 罗 郑 司马 诸葛")
            .split(QLatin1Char(' '));
    return picked(random, families) + picked(random, givenNames);
}

QString manName(QRandomGenerator &random)
{
    static const QStringList given =
        QStringLiteral("子轩 浩然 俊杰 宇航 志强 明哲 嘉豪 文博 天佑 建国 一凡 睿")
            .split(QLatin1Char(' '));
    return name(random, given);
}

QString womanName(QRandomGenerator &random)
{
    static const QStringList given =
        QStringLiteral("婉清 梦瑶 思涵 雨桐 佳怡 静雯 诗琪 晓燕 若曦 美玲 语嫣 颖")
            .split(QLatin1Char(' '));
    return name(random, given);
}

QString phone(QRandomGenerator &random)
{
    return QStringLiteral("13%1").arg(random.bounded(1000000000), 9, 10, QLatin1Char('0'));
}

QVector<Photo> photos(const Order &order, const QStringList &names, const QString &type)
{
    QVector<Photo> photos;
    for (const QString &photoName : names) {
        Photo photo;
        photo.id = QStringLiteral("%1%2%3")
                       .arg(order.photoSetId, type)
                       .arg(photos.size() + 1, 3, 10, QLatin1Char('0'));
        photo.name = photoName;
        photo.type = type;
        photo.urlPath = QStringLiteral("/photos/%1.jpg").arg(photo.id);
        if (!order.netPath.isEmpty())
            photo.localPath = order.netPath + QStringLiteral("\\原片\\") + photoName;
        photos.append(photo);
    }
    return photos;
}

QStringList cameraNames(QRandomGenerator &random, int count)
{
    QStringList names;
    int number = 1 + random.bounded(40);
    for (int i = 0; i < count; ++i, number += 1 + random.bounded(5))
        names << QStringLiteral("IMG_%1.jpg").arg(number, 4, 10, QLatin1Char('0'));
    return names;
}

void continueOrder(Order &order, const Order &before)
{
    order.number = before.number;
    order.service = QString::number(before.service.toInt() + 1);
    order.manName = before.manName;
    order.womanName = before.womanName;
    order.manPhone = before.manPhone;
    order.womanPhone = before.womanPhone;
    order.package = before.package;
    order.price = before.price;
}

} // namespace

QStringList firstOrderChoice()
{
    return {QStringLiteral("IMG_0003.jpg"), QStringLiteral("IMG_0005.jpg"),
            QStringLiteral("IMG_0007.jpg"), QStringLiteral("IMG_0009.jpg")};
}

void choosePhotos(Order &order, int count)
{
    QStringList names;
    for (int number = 1; number <= count; ++number)
        names << QStringLiteral("IMG_%1.jpg").arg(number, 5, 10, QLatin1Char('0'));
    order.chosenPhotos = photos(order, names, QStringLiteral("1"));
    order.hasMaterial = true;
}

OrderBook::OrderBook(QVector<Shop> shops, QString shareRoot, const QDate &today)
    : shops_(std::move(shops)), shareRoot_(std::move(shareRoot)), today_(today)
{
}

QString OrderBook::shared(const QString &folder) const
{
    return shareRoot_ + QLatin1Char('\\') + folder;
}

Order OrderBook::blank(int serial, const Shop &shop) const
{
    QRandomGenerator random(static_cast<quint32>(serial));
    const QDate shot = today_.addDays(-random.bounded(150));
    Order order;
    order.id = QString::number(50000 + serial);
    order.photoSetId = QString::number(800000 + serial);
    order.shopId = shop.id;
    order.shopName = shop.name;
    order.number = QStringLiteral("TS%1").arg(10000 + serial);
    order.service = QStringLiteral("1");
    order.manName = manName(random);
    order.womanName = womanName(random);
    order.manPhone = phone(random);
    order.womanPhone = phone(random);
    order.photographer = shop.persons.at(random.bounded(shop.persons.size())).name;
    order.makeUpArtist = womanName(random);
    order.consultant = womanName(random);
    order.retoucher = manName(random);
    order.role7Id = shop.persons.at(random.bounded(shop.persons.size())).id;
    order.isSample = random.bounded(10) == 0 ? QStringLiteral("1") : QStringLiteral("0");
    order.shotDate = shot.toString(QStringLiteral("yyyy-MM-dd"));
    order.sampleDate = shot.addDays(20).toString(QStringLiteral("yyyy-MM-dd"));
    if (random.bounded(3) > 0) {
        order.selectionTime = shot.addDays(7).toString(QStringLiteral("yyyy-MM-dd")) +
                              QStringLiteral(" 1%1:30:00").arg(random.bounded(10));
        order.completionTime = shot.addDays(30).toString(QStringLiteral("yyyy-MM-dd 16:20:00"));
    }
    order.package = picked(random, {QStringLiteral("海边婚纱套系"), QStringLiteral("古风写真套系"),
                                    QStringLiteral("全家福"), QStringLiteral("周年纪念套系")});
    order.price = QString::number(2888 + 1000 * random.bounded(9));
    order.photoCount = QString::number(20 + 10 * random.bounded(7));
    if (random.bounded(4) > 0) {
        order.sizeSmall = QStringLiteral("90");
        order.sizeMiddle = QStringLiteral("190");
        order.sizeBig = QStringLiteral("1920");
    }
    // Without a public root there is nothing else that a folder could be computed from.
    if (shop.publicRoot.isEmpty())
        order.netPath = shared(QStringLiteral("%1\\%2-1").arg(shop.name, order.number));
    return order;
}

QVector<Order> OrderBook::oneOrderTwice(const Shop &shop) const
{
    // TS10001-1: the customers whose choice the retouched material is named after.
    Order first = blank(1, shop);
    first.manName = QStringLiteral("周子墨");
    first.womanName = QStringLiteral("林婉清");
    first.shotDate = QStringLiteral("2025-10-1");
    first.selectionTime = QStringLiteral("2025-10-08 14:30:00");
    first.sampleDate = QStringLiteral("2025-10-20");
    first.chosenPhotos = photos(first, firstOrderChoice(), QStringLiteral("1"));
    first.trialPhotos = photos(first, {QStringLiteral("TRY_0001.jpg")}, QStringLiteral("2"));

    // TS10001-2: the second service of the same order, on the same day.
    Order second = blank(2, shop);
    continueOrder(second, first);
    second.shotDate = first.shotDate;
    return {first, second};
}

QVector<Order> OrderBook::notable() const
{
    const Shop &flagship = shops_.at(0);
    const Shop &riverside = shops_.at(1);
    const Shop &oldTown = shops_.at(2);
    QVector<Order> orders = oneOrderTwice(flagship);

    // TS10003: a name that breaks a form body unless it is escaped.
    Order escaped = blank(3, flagship);
    escaped.womanName = QStringLiteral("A&B+C%");
    orders << escaped;

    // TS10004: a folder of its own that is awkward to hand on.
    Order awkward = blank(4, flagship);
    awkward.netPath = shared(QStringLiteral("特别\\#1 100% 家&外景+💍"));
    orders << awkward;

    // TS10005: names that would lead out of the folder.
    Order hostile = blank(5, flagship);
    hostile.manName = QStringLiteral("../../赵<强>");
    hostile.womanName = QStringLiteral("..\\李:丽*?");
    hostile.chosenPhotos = photos(
        hostile,
        {QStringLiteral("../../out.jpg"), QStringLiteral("a:b?.jpg"), QStringLiteral("c.jpg")},
        QStringLiteral("1"));
    orders << hostile;

    // TS10006: its folder cannot be made, a part of the path is a file.
    Order blocked = blank(6, flagship);
    blocked.netPath = shared(QStringLiteral("blocked\\TS10006-1"));
    orders << blocked;

    // TS10007: an old fixed day, written without leading zeros, and no sizes.
    Order old = blank(7, riverside);
    old.shotDate = QStringLiteral("2024-3-7");
    old.selectionTime = QStringLiteral("2024-03-15 10:00:00");
    old.sizeSmall.clear();
    old.sizeMiddle.clear();
    old.sizeBig.clear();
    orders << old;

    // TS10008: nobody typed the shoot date yet.
    Order undated = blank(8, riverside);
    undated.shotDate.clear();
    undated.selectionTime.clear();
    orders << undated;

    // TS10009: no folder, and a branch without a public root to compute one from.
    Order pathless = blank(9, oldTown);
    pathless.netPath.clear();
    orders << pathless;
    return orders;
}

QVector<Order> OrderBook::ordinary(int count, int serial, const QString &shopId) const
{
    // The flagship has the most orders, as in life.
    static const int spread[] = {0, 0, 1, 0, 1, 2};
    QVector<Order> orders;
    orders.reserve(count);
    for (int i = 0; i < count; ++i) {
        const Shop *shop = &shops_.at(spread[i % 6]);
        for (const Shop &candidate : shops_) {
            if (candidate.id == shopId)
                shop = &candidate;
        }
        Order order = blank(serial + i, *shop);
        QRandomGenerator random(static_cast<quint32>(serial + i + 1000000));
        if (i % 6 == 1 && orders.last().shopId == order.shopId)
            continueOrder(order, orders.last());
        if (i % 9 == 3) {
            order.netPath =
                shared(QStringLiteral("专属\\%1 %2").arg(order.number, order.womanName));
        }
        if (!order.selectionTime.isEmpty()) {
            order.chosenPhotos =
                photos(order, cameraNames(random, 3 + random.bounded(6)), QStringLiteral("1"));
        }
        orders << order;
    }
    return orders;
}

} // namespace demo
