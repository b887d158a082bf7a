#pragma once

#include "history/rules/filerecord.h"
#include "ledger/ledgerrecords.h"

#include <QByteArray>
#include <QVector>

/// The history as a table for spreadsheet programs. Pure functions.
namespace historysheet {

QByteArray entriesCsv(const QVector<ledger::Entry> &entries);
QByteArray filesCsv(const ledger::Entry &entry, const QVector<FileRecord> &files);

} // namespace historysheet
