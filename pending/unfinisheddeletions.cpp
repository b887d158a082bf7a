#include "pending/unfinisheddeletions.h"

#include "app/context/accountcontext.h"
#include "ledger/ledger.h"
#include "pending/pendingdesk.h"

#include <algorithm>
#include <iterator>

namespace {

using Files = QVector<ledger::Deletion>;

Files leftAt(const LedgerReader &reader, const QVector<ledger::Desk> &desks)
{
    Files files;
    for (const ledger::Desk &desk : desks) {
        const auto open = reader.openDeletions(desk);
        std::copy_if(open.cbegin(), open.cend(), std::back_inserter(files),
                     [](const ledger::Deletion &file) { return file.deletedMs == 0; });
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
            return leftAt(reader, desks);
        },
        asking_.only([this](const Files &files) {
            files_ = files;
            emit changed();
        }));
}

QVector<pendinglines::Count> UnfinishedDeletions::counts() const
{
    QVector<pendinglines::Count> counts;
    for (const ShopRecord &shop : qAsConst(AccountContext::shopList))
        counts.append({pendinglines::Kind::LeftPhotos, shop.id, 0, of(shop.id).size()});
    return counts;
}

Files UnfinishedDeletions::of(const QString &branch) const
{
    Files files;
    std::copy_if(
        files_.cbegin(), files_.cend(), std::back_inserter(files),
        [&branch](const ledger::Deletion &file) { return file.order.identity.branch == branch; });
    return files;
}

void UnfinishedDeletions::remove(const orderqueries::Identity &identity, const QString &publicPath)
{
    cleanup_.start(of(identity.shopId), identity, publicPath);
}

void UnfinishedDeletions::keep(const QString &branch)
{
    QVector<ledger::DeletionId> kept;
    const Files files = of(branch);
    for (const ledger::Deletion &file : files)
        kept.append(file.id);
    Ledger::current().dismissDeletions(kept);
    refresh();
}
