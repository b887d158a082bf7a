#pragma once

#include "ledger/ledgerrecords.h"

#include <QPair>
#include <QString>

class QSqlQuery;

/// How values stand in the rows.
namespace ledgerrows {

/// A path as its folder, with the separator at its end, and its name.
QPair<QString, QString> split(const QString &path);
/// A folder, or the beginning of a path, by which it is found: without case, whichever form.
QString folded(const QString &path);
QString foldedFolder(const QString &folder);

QByteArray packed(const QVector<ledger::PendingFile> &files);
/// Nothing of what cannot be read.
QVector<ledger::PendingFile> unpackedFiles(const QByteArray &bytes);

/// SELECT … FROM … for copyIn(), deletionIn() and entryIn(); what follows names the tables c
/// (copy), d (deletion), e (entry), r (run), o (orders).
QString copySelection();
QString deletionSelection();
QString entrySelection();
QString pendingSelection(); ///< the table p (pending)

ledger::Copy copyIn(const QSqlQuery &row);
ledger::Deletion deletionIn(const QSqlQuery &row);
/// Without its volumes.
ledger::Entry entryIn(const QSqlQuery &row);
/// Without files where they cannot be read.
ledger::Pending pendingIn(const QSqlQuery &row);

} // namespace ledgerrows
