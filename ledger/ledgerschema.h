#pragma once

#include <QStringList>
#include <QVector>

/// The tables of the ledger and how they came about. What repeats (volumes, folders, orders, runs)
/// has tables of its own, so that a row of a copy stays small; there is one index for each question
/// that is asked of millions of rows.
namespace ledgerschema {

/// Marks the file as a ledger.
constexpr int applicationId = 0x54734c67;

/// One list of statements for each version, in order: the first makes version 1 of nothing.
const QVector<QStringList> &steps();

/// The version that this program writes.
int version();

} // namespace ledgerschema
