#pragma once

#include "distribution/sheet/sheetinput.h"

#include <QString>

/// The production sheet of one order as an HTML document. A pure function.
QString sheetHtml(const SheetInput &input);
