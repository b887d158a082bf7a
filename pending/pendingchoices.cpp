#include "pending/pendingchoices.h"

#include "ledger/ledger.h"
#include "pending/pendingdesk.h"

#include <algorithm>
#include <iterator>

namespace {

using Files = QVector<ledger::PendingFile>;

QSet<QString> pathsOf(const Files &files)
{
    QSet<QString> paths;
    for (const ledger::PendingFile &file : files)
        paths.insert(file.path);
    return paths;
}

Files without(const Files &files, const QSet<QString> &paths)
{
    Files rest;
    std::copy_if(files.cbegin(), files.cend(), std::back_inserter(rest),
                 [&paths](const ledger::PendingFile &file) { return !paths.contains(file.path); });
    return rest;
}

/// What the program did not live to write: files that were copied after the item was saved.
QSet<QString> copiedSince(const LedgerReader &reader, const ledger::Pending &item)
{
    QSet<QString> copied;
    const auto copies = reader.copiesOfOrder(item.order.identity, {item.desk.work});
    for (const ledger::Copy &copy : copies) {
        if (copy.isFinished() && copy.finishedMs >= item.savedMs)
            copied.insert(copy.source);
    }
    return copied;
}

QVector<ledger::Pending> choicesAt(const LedgerReader &reader, const QVector<ledger::Desk> &desks)
{
    QVector<ledger::Pending> items;
    for (const ledger::Desk &desk : desks)
        items += reader.pending(desk);
    QVector<ledger::Pending> choices;
    for (ledger::Pending &item : items) {
        if (item.kind != ledger::PendingKind::ChosenFiles)
            continue;
        item.files = without(item.files, copiedSince(reader, item));
        choices.append(item);
    }
    return choices;
}

} // namespace

PendingChoices::PendingChoices(ledger::Work work, Shown shown, QObject *parent)
    : QObject(parent), work_(work), shown_(std::move(shown))
{
    writing_.setSingleShot(true);
    connect(&writing_, &QTimer::timeout, this, &PendingChoices::flush);
}

PendingChoices::~PendingChoices()
{
    flush();
}

void PendingChoices::load()
{
    Ledger::current().ask(
        this,
        [desks = pendingDesks(work_)](const LedgerReader &reader) {
            return choicesAt(reader, desks);
        },
        [this](const QVector<ledger::Pending> &items) { take(items); });
}

void PendingChoices::take(const QVector<ledger::Pending> &items)
{
    for (const ledger::Pending &item : items) {
        Kept &kept = kept_[item.order.identity];
        kept.order = item.order;
        // The user may have begun to choose meanwhile.
        kept.waiting += without(item.files, pathsOf(kept.shown) + pathsOf(kept.waiting));
        if (kept.waiting.isEmpty() && kept.shown.isEmpty())
            save(item.order.identity); // all of it was copied
    }
    emit changed();
}

void PendingChoices::note(const OrderIdentity &order, int withinMs)
{
    unwritten_.insert(order);
    if (!writing_.isActive() || writing_.remainingTime() > withinMs)
        writing_.start(withinMs);
}

void PendingChoices::flush()
{
    writing_.stop();
    const QSet<OrderIdentity> orders = std::exchange(unwritten_, {});
    for (const OrderIdentity &order : orders)
        update(order);
}

void PendingChoices::update(const OrderIdentity &order)
{
    const auto shown = shown_(order);
    if (!shown || (shown->files.isEmpty() && !kept_.contains(order)))
        return;
    Kept &kept = kept_[order];
    kept.order = shown->order;
    kept.shown = shown->files;
    const int waited = kept.waiting.size();
    kept.waiting = without(kept.waiting, pathsOf(kept.shown));
    const bool isOther = kept.waiting.size() != waited;
    save(order);
    if (isOther)
        emit changed();
}

void PendingChoices::save(const OrderIdentity &order)
{
    const Kept &kept = kept_[order];
    const Files files = kept.shown + kept.waiting;
    Ledger::current().savePending({ledger::PendingKind::ChosenFiles,
                                   pendingDesk(work_, order.branch),
                                   kept.order,
                                   files,
                                   {},
                                   0});
    if (files.isEmpty())
        kept_.remove(order);
}

void PendingChoices::leaveTable()
{
    flush();
    for (Kept &kept : kept_) {
        kept.waiting += kept.shown;
        kept.shown.clear();
    }
    emit changed();
}

QVector<PendingChoices::Choice> PendingChoices::waiting(const QString &branch) const
{
    QVector<Choice> waiting;
    for (const Kept &kept : kept_) {
        if (kept.order.identity.branch == branch && !kept.waiting.isEmpty())
            waiting.append({kept.order, kept.waiting});
    }
    return waiting;
}

QVector<PendingChoices::Choice> PendingChoices::all(const QString &branch) const
{
    QVector<Choice> all;
    for (const Kept &kept : kept_) {
        if (kept.order.identity.branch == branch)
            all.append({kept.order, kept.shown + kept.waiting});
    }
    return all;
}

QStringList PendingChoices::branches() const
{
    QSet<QString> branches;
    for (const Kept &kept : kept_) {
        if (!kept.waiting.isEmpty())
            branches.insert(kept.order.identity.branch);
    }
    QStringList sorted(branches.cbegin(), branches.cend());
    sorted.sort();
    return sorted;
}

QVector<pendinglines::Count> PendingChoices::counts() const
{
    QVector<pendinglines::Count> counts;
    const QStringList all = branches();
    for (const QString &branch : all) {
        pendinglines::Count count{pendinglines::Kind::Choices, branch, 0, 0};
        const auto choices = waiting(branch);
        for (const Choice &choice : choices) {
            ++count.orders;
            count.files += choice.files.size();
        }
        counts.append(count);
    }
    return counts;
}

void PendingChoices::forget(const QString &branch)
{
    const auto waiting = this->waiting(branch);
    for (const Choice &choice : waiting) {
        kept_[choice.order.identity].waiting.clear();
        save(choice.order.identity);
    }
    emit changed();
}
