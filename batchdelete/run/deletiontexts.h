#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "batchdelete/run/batchdeleterun.h"
#include "ledger/ledgerrecords.h"
#include "widgets/boxes/boxtext.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/// What became of the files, in words. Pure functions.
namespace deletiontexts {

/// The files of \a order that are gone, one a line under a heading.
BoxText succeededList(const BatchDeleteOrderInfo &order);
/// Those that are not, or that the service does not know of, each with the reason.
BoxText failedList(const BatchDeleteOrderInfo &order);

/// What the buttons of the question after a failed report do.
QString resubmitChoices();
/// What is asked when several reports in a row were let be, and what its buttons do.
BoxText pauseQuestion();

/// What the end of a run is told with.
QString summaryText(const DeletionSummary &summary);

/// What the user leaves.
enum class Leaving { Window, Branch };

/// What is asked before \a files that are gone and unreported are left: whether they can be
/// reported later depends on whether that \a isRemembered.
QString unreportedQuestion(int files, Leaving leaving, bool isRemembered);

/// Why an order is skipped that another program of this machine has in hand.
QString elsewhereText(const ledger::Run &run);

/// Whether there is anything to be said of what became of the order.
bool hasOutcome(const BatchDeleteOrderInfo &order);
/// Every file of the orders with an outcome: a table for spreadsheet programs, UTF-8 with a mark
/// that says so. Orders that were refused, skipped or not finished have a line with the reason.
QByteArray csv(const QVector<BatchDeleteOrderInfo> &orders);

} // namespace deletiontexts
