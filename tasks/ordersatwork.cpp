#include "tasks/ordersatwork.h"

#include <QHash>

#include <utility>

namespace ordersatwork {

namespace {

struct Work
{
    QString tool;
    int claims = 0;
};

QHash<OrderIdentity, Work> &works()
{
    static QHash<OrderIdentity, Work> all;
    return all;
}

} // namespace

void Claim::add(const QVector<OrderIdentity> &orders, const QString &tool)
{
    for (const OrderIdentity &order : orders) {
        Work &work = works()[order];
        work.tool = tool;
        ++work.claims;
    }
    orders_ += orders;
}

Claim::~Claim()
{
    release();
}

Claim::Claim(Claim &&other) noexcept : orders_(std::exchange(other.orders_, {}))
{
}

Claim &Claim::operator=(Claim &&other) noexcept
{
    std::swap(orders_, other.orders_);
    other.release();
    return *this;
}

void Claim::release()
{
    const auto orders = std::exchange(orders_, {});
    for (const OrderIdentity &order : orders) {
        if (--works()[order].claims == 0)
            works().remove(order);
    }
}

std::optional<Conflict> claim(const QVector<OrderIdentity> &orders, const QString &tool,
                              Claim *claim)
{
    for (const OrderIdentity &order : orders) {
        const QString other = toolAt(order);
        if (!other.isEmpty() && other != tool)
            return Conflict{order, other};
    }
    claim->add(orders, tool);
    return std::nullopt;
}

QString toolAt(const OrderIdentity &order)
{
    return works().value(order).tool;
}

bool isIdle()
{
    return works().isEmpty();
}

QString refusal(const QString &orderName, const QString &tool)
{
    return QStringLiteral("订单 %1 正在“%2”中处理，请等它结束后再试").arg(orderName, tool);
}

} // namespace ordersatwork
