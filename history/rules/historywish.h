#pragma once

#include "ledger/ledgerrecords.h"

#include <QDate>
#include <QString>

/// What the user looks for in the history, as typed.
struct HistoryWish
{
    enum class Kind { All, Imports, Distributions, Deletions };
    enum class State { All, Failed, Unregistered };

    QString order;
    QString file;
    QString card;
    QDate from;
    QDate to;
    Kind kind = Kind::All;
    State state = State::All;
};

/// Pure functions.
namespace historywish {

/// The question to the ledger; dates the wrong way round change places. Parts of file names are
/// looked for only where that is quick: within an order or a month. Elsewhere names are looked for
/// by their beginning.
ledger::HistorySearch searchOf(const HistoryWish &wish);
/// Whether parts of file names are looked for.
bool findsPartsOfNames(const HistoryWish &wish);
/// Whether \a entry is in the state that is asked for, which the ledger does not look at.
bool isWanted(const HistoryWish &wish, const ledger::Entry &entry);

} // namespace historywish
