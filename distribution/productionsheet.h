#pragma once

#include "distribution/orderdetail.h"

#include <QString>

/// Prints the production sheet of one order into its folder (local), as "明细制作单.pdf". Returns
/// what went wrong; empty when nothing did. Blocks; for worker threads.
QString printProductionSheet(const OrderDetail &detail, const QString &orderFolder);
