#include "history/run/historylook.h"

#include "ledger/ledger.h"

#include <utility>

namespace {

constexpr int entriesAtOnce = 200;
/// Looked through for a stretch when only some entries are wanted.
constexpr int pagesAtOnce = 20;
constexpr int filesShown = 20000;

/// On the ledger's thread.
HistoryStretch stretchOf(const LedgerReader &reader, const HistoryWish &wish,
                         ledger::EntryId before)
{
    HistoryStretch stretch;
    stretch.isOpen = reader.isOpen();
    stretch.reached = before;
    stretch.hasMore = stretch.isOpen;
    ledger::HistorySearch search = historywish::searchOf(wish);
    search.most = entriesAtOnce;
    for (int page = 0; page < pagesAtOnce && stretch.hasMore; ++page) {
        search.before = stretch.reached;
        const ledger::HistoryPage found = reader.history(search);
        stretch.hasMore = found.hasMore && !found.entries.isEmpty();
        for (const ledger::Entry &entry : found.entries) {
            stretch.reached = entry.id;
            if (historywish::isWanted(wish, entry))
                stretch.entries.append(entry);
        }
        if (stretch.entries.size() >= entriesAtOnce)
            break;
    }
    return stretch;
}

struct Files
{
    QVector<FileRecord> records;
    bool isWhole = true;
};

Files filesOf(const LedgerReader &reader, ledger::EntryId entry)
{
    Files files;
    const QVector<ledger::Copy> copies = reader.copiesOfEntry(entry, 0, filesShown);
    files.isWhole = copies.size() < filesShown;
    for (const ledger::Copy &copy : copies)
        files.records.append(FileRecord::of(copy));
    const QVector<ledger::Deletion> deletions = reader.deletionsOfEntry(entry);
    for (const ledger::Deletion &deletion : deletions)
        files.records.append(FileRecord::of(deletion));
    return files;
}

} // namespace

void HistoryLook::search(const HistoryWish &wish)
{
    wish_ = wish;
    reached_ = 0;
    files_.abandon();
    ask(0);
}

void HistoryLook::more()
{
    if (!isUnderWay() && reached_ != 0)
        ask(reached_);
}

void HistoryLook::ask(ledger::EntryId before)
{
    Ledger::current().ask(
        this,
        [wish = wish_, before](const LedgerReader &reader) {
            return stretchOf(reader, wish, before);
        },
        entries_.only([this, before](const HistoryStretch &stretch) {
            reached_ = stretch.reached;
            emit found(stretch, before == 0);
        }));
}

void HistoryLook::lookAt(const ledger::Entry &entry)
{
    Ledger::current().ask(
        this, [id = entry.id](const LedgerReader &reader) { return filesOf(reader, id); },
        files_.only([this, id = entry.id](const Files &files) {
            emit filesFound(id, files.records, files.isWhole);
        }));
}
