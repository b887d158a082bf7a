#pragma once

#include "ledger/ledgerrecords.h"

#include <QString>
#include <QVariantList>

namespace ledgerhistory {

/// A statement that selects entries, as ledgerrows::entryIn() takes them, and its values.
struct Selection
{
    QString statement;
    QVariantList values;
};

/// One entry more than the page holds, newest first.
Selection selectionFor(const ledger::HistorySearch &search);

} // namespace ledgerhistory
