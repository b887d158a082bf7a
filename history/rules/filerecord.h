#pragma once

#include "ledger/ledgerrecords.h"

#include <QMetaType>
#include <QString>
#include <QVector>

/// One file of a run's work for an order as the history shows it: one that was copied, or one that
/// was deleted.
struct FileRecord
{
    enum class State { Good, Open, Failed };

    QString name;
    QString kind;
    State state = State::Open;
    QString stateText; ///< "已登记", or why it failed
    QString proof;     ///< in words; empty for deletions
    qint64 bytes = -1;
    qint64 timeMs = 0; ///< when it was finished, or begun
    QString source;
    QString target;
    QString card;
    QString hash; ///< of the target, else of the source; hexadecimal

    static FileRecord of(const ledger::Copy &copy);
    static FileRecord of(const ledger::Deletion &deletion);
};
Q_DECLARE_METATYPE(FileRecord)
