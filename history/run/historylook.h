#pragma once

#include "history/rules/filerecord.h"
#include "history/rules/historywish.h"
#include "tasks/latest.h"

#include <QMetaType>
#include <QObject>
#include <QVector>

/// A stretch of the history.
struct HistoryStretch
{
    bool isOpen = false;            ///< whether there is a ledger at all
    QVector<ledger::Entry> entries; ///< newest first
    bool hasMore = false;
    ledger::EntryId reached = 0; ///< what follows comes after this one
};

/// Asks the ledger for the history, stretch by stretch, and for the files of an entry. Only the
/// newest answer of each kind counts. Interface thread; waits for nothing.
class HistoryLook : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    void search(const HistoryWish &wish);
    /// The stretch that follows; nothing happens while one is awaited.
    void more();
    bool isUnderWay() const { return entries_.isUnderWay(); }

    void lookAt(const ledger::Entry &entry);
    void lookAway() { files_.abandon(); }

signals:
    /// \a isFirst: of a new search.
    void found(const HistoryStretch &stretch, bool isFirst);
    /// \a isWhole: otherwise there are more files than are shown at once.
    void filesFound(ledger::EntryId entry, const QVector<FileRecord> &files, bool isWhole);

private:
    void ask(ledger::EntryId before);

    HistoryWish wish_;
    ledger::EntryId reached_ = 0;
    Latest entries_;
    Latest files_;
};
