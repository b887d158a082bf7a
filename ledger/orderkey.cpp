#include "ledger/orderkey.h"

namespace ledger {

OrderKey orderKey(const OrderIdentity &identity, const QString &orderPayForKey,
                  const QString &serviceTimes, QStringList customers)
{
    customers.removeAll(QString());
    return {identity, orderPayForKey + QLatin1Char('-') + serviceTimes,
            customers.join(QLatin1Char(' '))};
}

} // namespace ledger
