#pragma once

#include "fileimport/rules/importrecords.h"
#include "ledger/ledgerrecords.h"
#include "pending/pendingchoices.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// How what was chosen for an order is remembered, and comes back into the table.
namespace choicerestoring {

/// As the ledger names what the window does.
ledger::Work workOf(ImportMode mode);
ledger::OrderKey keyOf(const ImportOrder &order);
/// The order's files that are not imported.
PendingChoices::Choice rememberedFiles(const ImportOrder &order);

/// What comes back: orders as the service lists them now, with their files.
struct Restored
{
    QVector<ImportOrder> orders;
    QStringList problems; ///< of orders whose files stay remembered, a line each
};

/// Puts remembered files back into freshly listed \a orders and makes the orders' folders. Blocks;
/// for worker threads.
Restored restore(ImportMode mode, const QVector<ImportOrder> &orders,
                 const QVector<PendingChoices::Choice> &choices);

/// Whether \a target, where an order's file was copied to, lies in the folder that the order has
/// now. Announcing another folder would take what is not in it for gone.
bool isInFolder(const ImportOrder &order, const QString &target);

} // namespace choicerestoring
