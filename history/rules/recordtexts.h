#pragma once

#include "ledger/ledgerrecords.h"

#include <QColor>
#include <QString>

/// What the ledger's rows say, in words. Pure functions.
namespace recordtexts {

/// As the tool's card is called.
QString workText(ledger::Work work);
/// "2026-11-23 18:05:07" in local time; empty for 0.
QString timeText(qint64 ms);
/// "3.2 MB"
QString sizeText(qint64 bytes);
/// A card's label and serial number.
QString cardText(const ledger::Volume &volume);
QString kindText(ledger::CopyKind kind);

/// How one run ended for one order.
enum class Ending { Good, GoesOn, BrokenOff, Unregistered, Failed };
Ending endingOf(const ledger::Entry &entry);
QString endingText(const ledger::Entry &entry);
QColor endingColour(Ending ending);
/// "拷贝 40/42，已核对 40，已登记 40"; of deletions "删除 12/12".
QString countsText(const ledger::Entry &entry);
QString cardsText(const ledger::Entry &entry);

} // namespace recordtexts
