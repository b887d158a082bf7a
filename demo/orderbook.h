#pragma once

#include "demo/studio.h"

#include <QDate>
#include <QString>
#include <QVector>

namespace demo {

// Names of the photos that the customers of the first order chose.
QStringList firstOrderChoice();

// From now on the customers have chosen that many photos, IMG_00001.jpg and so on, of which nothing
// lies on the share until somebody puts it there.
void choosePhotos(Order &order, int count);

// Makes believable orders, the same ones for the same arguments. Pure.
class OrderBook
{
public:
    // shareRoot: the studio's share in wire form. Dates are spread over the months before today.
    OrderBook(QVector<Shop> shops, QString shareRoot, const QDate &today);

    // The orders that tests and the tour know by their numbers, TS10001 to TS10009; see the cpp.
    QVector<Order> notable() const;
    // serial: running number of the first one, unique among all orders; shopId empty = all
    // branches.
    QVector<Order> ordinary(int count, int serial, const QString &shopId = QString()) const;

private:
    QVector<Order> oneOrderTwice(const Shop &shop) const;
    Order blank(int serial, const Shop &shop) const;
    QString shared(const QString &folder) const;

    QVector<Shop> shops_;
    QString shareRoot_;
    QDate today_;
};

} // namespace demo
