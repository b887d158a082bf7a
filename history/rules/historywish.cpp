#include "history/rules/historywish.h"

#include "history/rules/recordtexts.h"

#include <utility>

namespace historywish {

namespace {

constexpr int daysOfParts = 31;

QVector<ledger::Work> worksOf(HistoryWish::Kind kind)
{
    using ledger::Work;
    switch (kind) {
    case HistoryWish::Kind::All:
        break;
    case HistoryWish::Kind::Imports:
        return {Work::ImportOriginals, Work::ImportRetouched, Work::PhotoImport};
    case HistoryWish::Kind::Distributions:
        return {Work::Distribution, Work::DownloadOriginals, Work::DownloadSelection,
                Work::DownloadDelivery};
    case HistoryWish::Kind::Deletions:
        return {Work::BatchDeletion, Work::PhotoDeletion};
    }
    return {};
}

} // namespace

bool findsPartsOfNames(const HistoryWish &wish)
{
    if (!wish.order.trimmed().isEmpty())
        return true;
    return wish.from.isValid() && wish.to.isValid() &&
           qAbs(wish.from.daysTo(wish.to)) < daysOfParts;
}

ledger::HistorySearch searchOf(const HistoryWish &wish)
{
    ledger::HistorySearch search;
    search.order = wish.order.trimmed();
    search.card = wish.card.trimmed();
    (findsPartsOfNames(wish) ? search.filePart : search.fileStart) = wish.file.trimmed();
    search.from = wish.from;
    search.to = wish.to;
    if (search.from.isValid() && search.to.isValid() && search.to < search.from)
        std::swap(search.from, search.to);
    search.works = worksOf(wish.kind);
    return search;
}

bool isWanted(const HistoryWish &wish, const ledger::Entry &entry)
{
    switch (wish.state) {
    case HistoryWish::State::All:
        return true;
    case HistoryWish::State::Failed: {
        const recordtexts::Ending ending = recordtexts::endingOf(entry);
        return ending == recordtexts::Ending::Failed || ending == recordtexts::Ending::BrokenOff;
    }
    case HistoryWish::State::Unregistered:
        return entry.awaited > 0;
    }
    return true;
}

} // namespace historywish
