#pragma once

#include "ledger/ledgerrecords.h"

#include <QString>
#include <QVector>

/// In whose name the ledger keeps what a tool does for \a branch: that of the account that is
/// logged in. Interface thread.
ledger::Desk pendingDesk(ledger::Work work, const QString &branch);

/// The same for each branch that the account knows.
QVector<ledger::Desk> pendingDesks(ledger::Work work);

/// What users search an order by whose number is \a shown together with that of its service.
QString searchedNumber(const QString &shown);
