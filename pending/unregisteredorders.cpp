#include "pending/unregisteredorders.h"

#include "app/context/accountcontext.h"
#include "ledger/ledger.h"
#include "pending/pendingdesk.h"

#include <QHash>

#include <algorithm>
#include <iterator>
#include <utility>

using pendinglines::Kind;

UnregisteredOrders::UnregisteredOrders(IsOffered isOffered, QObject *parent)
    : QObject(parent), isOffered_(std::move(isOffered))
{
}

void UnregisteredOrders::refresh()
{
    Ledger::current().ask(
        this,
        [desks = pendingDesks(work_)](const LedgerReader &reader) {
            QVector<ledger::Entry> entries;
            for (const ledger::Desk &desk : desks)
                entries += reader.unregistered(desk);
            return entries;
        },
        asking_.only([this](const QVector<ledger::Entry> &entries) {
            entries_ = entries;
            emit changed();
        }));
}

bool UnregisteredOrders::knows(const OrderIdentity &order) const
{
    return std::any_of(entries_.cbegin(), entries_.cend(), [&order](const ledger::Entry &entry) {
        return entry.order.identity == order;
    });
}

QVector<ledger::Entry> UnregisteredOrders::in(const QString &branch) const
{
    QVector<ledger::Entry> entries;
    std::copy_if(entries_.cbegin(), entries_.cend(), std::back_inserter(entries),
                 [this, &branch](const ledger::Entry &entry) {
                     return entry.order.identity.branch == branch &&
                            isOffered_(entry.order.identity);
                 });
    return entries;
}

QVector<pendinglines::Count> UnregisteredOrders::counts(Kind kind) const
{
    QVector<pendinglines::Count> counts;
    for (const ShopRecord &shop : qAsConst(AccountContext::shopList)) {
        QHash<OrderIdentity, bool> isPartly;
        const auto entries = in(shop.id);
        for (const ledger::Entry &entry : entries)
            isPartly[entry.order.identity] |= entry.finished + entry.failed < entry.chosen;
        counts.append(
            {kind, shop.id,
             int(std::count(isPartly.cbegin(), isPartly.cend(), kind == Kind::PartlyCopied)), 0});
    }
    return counts;
}

void UnregisteredOrders::ignore(const QString &branch)
{
    const auto entries = in(branch);
    for (const ledger::Entry &entry : entries)
        Ledger::current().dismissUnregistered(entry.run.desk, entry.order.identity);
    refresh();
}
