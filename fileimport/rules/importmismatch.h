#pragma once

#include "fileimport/rules/importrequests.h"
#include "widgets/boxes/boxtext.h"

/// What differs between the files that were announced to the service and those that it found. Pure
/// functions.
namespace importmismatch {

/// The rich text that lists the differences; empty when there are none.
BoxText notice(ImportMode mode, const ImportOrder &order, const importrequests::BatchReply &reply);
/// Positions of the order's imported files that the notice names.
QVector<int> files(ImportMode mode, const ImportOrder &order,
                   const importrequests::BatchReply &reply);

} // namespace importmismatch
