#include "pending/unfinisheddeletions.h"

#include "app/context/accountcontext.h"
#include "ledger/ledger.h"
#include "pending/pendingdesk.h"

#include <QPair>

#include <algorithm>
#include <iterator>

using pendinglines::Kind;
using pendinglines::Offer;

namespace {

using Files = QVector<ledger::Deletion>;

/// Left on the disk first, then those without an answer.
QPair<Files, Files> unfinishedAt(const LedgerReader &reader, const QVector<ledger::Desk> &desks)
{
    QPair<Files, Files> files;
    for (const ledger::Desk &desk : desks) {
        const Files open = reader.openDeletions(desk);
        std::copy_if(open.cbegin(), open.cend(), std::back_inserter(files.first),
                     [](const ledger::Deletion &file) { return file.deletedMs == 0; });
        files.second += reader.unansweredDeletions(desk);
    }
    return files;
}

} // namespace

UnfinishedDeletions::UnfinishedDeletions(const QString &tool, QObject *parent)
    : QObject(parent), cleanup_(tool)
{
    connect(&cleanup_, &LeftPhotoCleanup::finished, this, [this](const QString &text) {
        refresh();
        emit finished(text);
    });
}

void UnfinishedDeletions::refresh()
{
    Ledger::current().ask(
        this,
        [desks = pendingDesks(ledger::Work::PhotoDeletion)](const LedgerReader &reader) {
            return unfinishedAt(reader, desks);
        },
        asking_.only([this](const QPair<Files, Files> &files) {
            files_ = {{Kind::LeftPhotos, files.first}, {Kind::UnansweredPhotos, files.second}};
            emit changed();
        }));
}

const QVector<Kind> &UnfinishedDeletions::kinds()
{
    static const QVector<Kind> all{Kind::LeftPhotos, Kind::UnansweredPhotos};
    return all;
}

QVector<pendinglines::Count> UnfinishedDeletions::counts(Kind kind) const
{
    QVector<pendinglines::Count> counts;
    for (const ShopRecord &shop : qAsConst(AccountContext::shopList))
        counts.append({kind, shop.id, 0, leftfiles::photosAmong(of(kind, shop.id))});
    return counts;
}

Files UnfinishedDeletions::of(Kind kind, const QString &branch) const
{
    const Files all = files_.value(kind);
    Files files;
    std::copy_if(
        all.cbegin(), all.cend(), std::back_inserter(files),
        [&branch](const ledger::Deletion &file) { return file.order.identity.branch == branch; });
    return files;
}

bool UnfinishedDeletions::take(Kind kind, Offer offer, const orderqueries::Identity &identity,
                               const QString &publicPath)
{
    if (!kinds().contains(kind))
        return false;
    const Files files = of(kind, identity.shopId);
    if (offer == Offer::KeepFiles)
        keep(files);
    else if (offer == Offer::DeleteFiles)
        cleanup_.start(LeftPhotoCleanup::Task::Remove, files, identity, publicPath);
    else if (offer == Offer::Verify)
        cleanup_.start(LeftPhotoCleanup::Task::Verify, files, identity, publicPath);
    else
        return false;
    return true;
}

void UnfinishedDeletions::keep(const Files &files)
{
    QVector<ledger::DeletionId> kept;
    for (const ledger::Deletion &file : files)
        kept.append(file.id);
    Ledger::current().dismissDeletions(kept);
    refresh();
}
