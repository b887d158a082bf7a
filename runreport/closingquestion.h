#pragma once

#include "widgets/boxes/boxtext.h"

/// What to ask, with \a question, before a window of an import closes. Where that stops an import
/// (\a stopsImport) the buttons say so.
BoxText closingQuestion(const QString &question, bool stopsImport);
