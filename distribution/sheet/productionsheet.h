#pragma once

#include "distribution/plan/plannedpictures.h"

#include <QString>

/// Prints the production sheet of one order into its folder (local), as "明细制作单.pdf", with the
/// pictures that the order's plan has made. Returns what went wrong; empty when nothing did.
/// Blocks; for worker threads.
QString printProductionSheet(const OrderDetail &detail, const QString &orderFolder,
                             const PlannedPictures &pictures);
