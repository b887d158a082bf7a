#include "pending/pendingdesk.h"

#include "app/context/accountcontext.h"

ledger::Desk pendingDesk(ledger::Work work, const QString &branch)
{
    return {AccountContext::uid, branch, work};
}

QVector<ledger::Desk> pendingDesks(ledger::Work work)
{
    QVector<ledger::Desk> desks;
    for (const ShopRecord &shop : qAsConst(AccountContext::shopList))
        desks.append(pendingDesk(work, shop.id));
    return desks;
}

QString searchedNumber(const QString &shown)
{
    const int end = shown.lastIndexOf(QLatin1Char('-'));
    return end > 0 ? shown.left(end) : shown;
}
