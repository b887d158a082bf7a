#include "cardcheck/rules/soughtorders.h"

#include <algorithm>

namespace soughtorders {

QString Order::displayNumber() const
{
    return serviceTimes.isEmpty() ? orderPayForKey
                                  : orderPayForKey + QLatin1Char('-') + serviceTimes;
}

QString Order::customers() const
{
    QStringList names{mname, wname};
    names.removeAll(QString());
    return names.join(QLatin1Char(' '));
}

Found read(const QJsonObject &reply, const orderqueries::SearchedBranch &branch)
{
    return orderqueries::readFoundOrders<Order>(reply, [&branch](const QJsonObject &element) {
        Order order;
        static_cast<orderqueries::OrderInfo &>(order) =
            orderqueries::readOrderHead(element, branch);
        if (!order.netPath.isEmpty() || !branch.publicPath.isEmpty())
            order.folder = orderqueries::importFolderOf(order, order.netPath, branch.publicPath);
        return order;
    });
}

QVector<Order> joined(QVector<Order> first, const QVector<Order> &more)
{
    for (const Order &order : more) {
        const bool isKnown =
            std::any_of(first.cbegin(), first.cend(), [&order](const Order &known) {
                return known.identity() == order.identity();
            });
        if (!isKnown)
            first.append(order);
    }
    return first;
}

} // namespace soughtorders
