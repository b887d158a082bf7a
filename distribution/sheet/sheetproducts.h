#pragma once

#include "distribution/sheet/sheetinput.h"

#include <QString>

/// Which of the production sheet's two product tables.
enum class ProductKind { Urgent, Normal };

/// One of the product tables: title, columns, each product with its photos, total.
QString productTable(const SheetInput &input, ProductKind kind);
