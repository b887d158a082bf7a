#pragma once

#include "ledger/ledgerrecords.h"

#include <QString>
#include <QStringList>

namespace ledger {

/// An order as rows call it: by its number with that of its service, and by its \a customers,
/// those without a name left out.
OrderKey orderKey(const OrderIdentity &identity, const QString &orderPayForKey,
                  const QString &serviceTimes, QStringList customers);

} // namespace ledger
