#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "batchdelete/run/batchdeleterun.h"
#include "widgets/boxes/boxtext.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/// What became of the files, in words. Pure functions.
namespace deletionreport {

/// The files of \a order that are gone, one a line under a heading.
BoxText succeededList(const BatchDeleteOrderInfo &order);
/// Those that are not, or that the service does not know of, each with the reason.
BoxText failedList(const BatchDeleteOrderInfo &order);

/// What the end of a run is told with.
QString summaryText(const DeletionSummary &summary);

/// Every file of the orders that a run had its turn with: a table for spreadsheet programs, UTF-8
/// with a mark that says so. Orders without files have a line for what became of them.
QByteArray csv(const QVector<BatchDeleteOrderInfo> &orders);

} // namespace deletionreport
