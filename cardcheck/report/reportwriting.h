#pragma once

#include "cardcheck/report/reportcontent.h"

/// Writing a report where the user says. Blocks, for worker threads; false when nothing was
/// written.
namespace reportwriting {

bool writePdf(const reportcontent::Report &report, const QString &path);
bool writeCsv(const reportcontent::Report &report, const QString &path);

} // namespace reportwriting
