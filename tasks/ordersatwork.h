#pragma once

#include "app/context/orderidentity.h"

#include <QString>
#include <QVector>

#include <optional>

/// The orders whose files are being worked on, of all tools of the process, so that one tool
/// refuses what another has in hand. Interface thread only.
namespace ordersatwork {

/// Keeps its orders at work as long as it lives.
class Claim
{
public:
    Claim() = default;
    /// Nothing is checked: claim() is for that.
    Claim(const QVector<OrderIdentity> &orders, const QString &tool) { add(orders, tool); }
    ~Claim();
    Claim(Claim &&other) noexcept;
    Claim &operator=(Claim &&other) noexcept;

    /// Nothing is checked.
    void add(const QVector<OrderIdentity> &orders, const QString &tool);
    void release();

private:
    QVector<OrderIdentity> orders_;
};

/// An order that cannot be had.
struct Conflict
{
    OrderIdentity order;
    QString tool; ///< that has it in hand, as its card is called
};

/// Adds \a orders to \a claim for \a tool, all of them or none: when one is in another tool's hands
/// the conflict is returned. What the tool has in hand already it may take again; whether it should
/// is for its own rules.
std::optional<Conflict> claim(const QVector<OrderIdentity> &orders, const QString &tool,
                              Claim *claim);

/// The tool that has \a order in hand; empty when none has.
QString toolAt(const OrderIdentity &order);

/// No order is at work.
bool isIdle();

/// What to tell the user of an order that \a tool has in hand.
QString refusal(const QString &orderName, const QString &tool);

} // namespace ordersatwork
