#include "fileimport/window/importrestorer.h"

#include "fileimport/rules/importrules.h"
#include "fileimport/run/importrun.h"
#include "fileimport/window/importorderpanel.h"
#include "fileimport/window/importordertablemodel.h"
#include "ledger/ledger.h"
#include "net/branchsession.h"
#include "pending/pendingdesk.h"
#include "pending/pendinglookup.h"
#include "tasks/background.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/orders/orderfinder.h"
#include "widgets/windows/loadingoverlay.h"

#include <algorithm>

using pendinglines::Kind;
using pendinglines::Offer;
using Lookup = OrderLookup<ImportOrder>;

ImportRestorer::ImportRestorer(const Place &place)
    : QObject(place.window)
    , place_(place)
    , bar_(new PendingBar(place.window, place.panel->notices()))
    , lookup_(this, &importrequests::readOrders)
    , unregistered_([this](const OrderIdentity &order) { return isOffered(order); })
    , deletions_(importrules::toolName(ImportMode::Originals))
{
    connect(bar_, &PendingBar::taken, this, &ImportRestorer::take);
    connect(place.finder, &OrderFinder::branchSwitched, this, [this] {
        bar_->setBranch(place_.branch->identity().shopId);
        refresh();
    });
    connect(place.finder, &OrderFinder::busyChanged, this, [this](bool isBusy) {
        if (isBusy) // what is being looked up would replace what is being searched
            lookup_.cancel();
    });
    connect(&unregistered_, &UnregisteredOrders::changed, this, &ImportRestorer::countRest);
    connect(&deletions_, &UnfinishedDeletions::changed, this, [this] {
        for (const Kind kind : UnfinishedDeletions::kinds())
            bar_->setCounts(kind, deletions_.counts(kind));
    });
    connect(&deletions_, &UnfinishedDeletions::finished, this,
            [this](const QString &text) { MessageBox::information(place_.window, text); });
    connectTable();
}

void ImportRestorer::connectTable()
{
    const ImportOrderTableModel *orders = place_.orders;
    connect(orders, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        if (choices_)
            choices_->leaveTable();
    });
    connect(orders, &QAbstractItemModel::modelReset, this, [this] {
        for (const ImportOrder &order : place_.orders->orders()) {
            if (choices_ && !order.files.isEmpty())
                choices_->noteChoice(order.identity());
        }
        if (choices_)
            choices_->flush();
        countRest();
    });
    connect(orders, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex &first, const QModelIndex &last) {
                for (int row = first.row(); choices_ && row <= last.row(); ++row) {
                    const OrderIdentity order = place_.orders->order(row).identity();
                    if (first.column() == ImportOrderTableModel::StateColumn)
                        choices_->noteProgress(order);
                    else
                        choices_->noteChoice(order);
                }
            });
}

void ImportRestorer::setRun(ImportMode mode, ImportRun *run)
{
    mode_ = mode;
    run_ = run;
    unregistered_.setWork(choicerestoring::workOf(mode));
    choices_ = std::make_unique<PendingChoices>(
        choicerestoring::workOf(mode),
        [this](const OrderIdentity &id) -> std::optional<PendingChoices::Choice> {
            const auto &orders = place_.orders->orders(); // also while they are being replaced
            const auto order =
                std::find_if(orders.cbegin(), orders.cend(),
                             [&id](const ImportOrder &each) { return each.identity() == id; });
            if (order == orders.cend())
                return std::nullopt;
            return choicerestoring::rememberedFiles(*order);
        });
    connect(choices_.get(), &PendingChoices::changed, this,
            [this] { bar_->setCounts(Kind::Choices, choices_->counts()); });
    connect(run, &ImportRun::orderRegistered, this, &ImportRestorer::onRegistered);
    connect(run, &ImportRun::orderLeftUnregistered, this, &ImportRestorer::countRest);
    connect(run, &ImportRun::tasksEnded, this, [this] { choices_->flush(); });
}

void ImportRestorer::open()
{
    choices_->load();
}

void ImportRestorer::flush()
{
    choices_->flush();
}

// What waits.

void ImportRestorer::refresh()
{
    unregistered_.refresh();
    if (mode_ == ImportMode::Originals)
        deletions_.refresh();
}

void ImportRestorer::countRest()
{
    for (const Kind kind : {Kind::Unregistered, Kind::PartlyCopied})
        bar_->setCounts(kind, unregistered_.counts(kind));
}

/// The order's row says it itself while it has one.
bool ImportRestorer::isOffered(const OrderIdentity &order) const
{
    const int row = place_.orders->rowOf(order);
    return !run_->isAtWork(order) && (row < 0 || !place_.orders->order(row).unregistered);
}

// The ways out.

void ImportRestorer::take(Kind kind, Offer offer, const QString &branch)
{
    if (deletions_.take(kind, offer, place_.branch->identity(), place_.branch->publicPath()))
        return;
    switch (offer) {
    case Offer::Show:
        showChoices();
        break;
    case Offer::Forget:
        choices_->forget(branch);
        break;
    case Offer::RegisterAgain:
        registerAgain();
        break;
    case Offer::Ignore:
        unregistered_.ignore(branch);
        break;
    case Offer::SwitchBranch:
        place_.finder->chooseBranch(branch);
        break;
    case Offer::DeleteFiles:
    case Offer::KeepFiles:
    case Offer::Verify:
    case Offer::Report:
        Q_UNREACHABLE(); // taken above, or another tool's
    }
}

bool ImportRestorer::mayReplaceTable()
{
    if (run_->isBusy())
        MessageBox::warning(place_.window, QStringLiteral("导片中..."));
    return !run_->isBusy() && !lookup_.isActive();
}

void ImportRestorer::showChoices()
{
    if (!mayReplaceTable())
        return;
    choices_->flush();
    place_.finder->cancel();
    place_.panel->overlay()->showText(QStringLiteral("正在查询订单..."));
    lookup_.start(
        pendinglookup::wantedOf<ImportOrder>(choices_->all(place_.branch->identity().shopId)),
        place_.branch->identity(), place_.branch->publicPath(),
        [this](const Lookup::Answer &answer) { putBack(answer); });
}

void ImportRestorer::putBack(const Lookup::Answer &answer)
{
    pendinglookup::tellMissing(place_.window, answer);
    const auto choices = choices_->all(place_.branch->identity().shopId);
    QStringList folders;
    for (const ImportOrder &order : answer.orders)
        folders.append(importrules::importPathOf(order));
    if (answer.orders.isEmpty()) {
        place_.panel->overlay()->hideOverlay();
        return;
    }
    onDisk(
        this, folders,
        [mode = mode_, orders = answer.orders, choices] {
            return choicerestoring::restore(mode, orders, choices);
        },
        restoring_.only(
            [this](const choicerestoring::Restored &restored) { listRestored(restored); }));
}

void ImportRestorer::listRestored(const choicerestoring::Restored &restored)
{
    place_.panel->overlay()->hideOverlay();
    if (!restored.problems.isEmpty())
        MessageBox::warning(
            place_.window,
            BoxText(QStringLiteral("以下订单的文件没有恢复，仍会保留："), restored.problems));
    if (!mayReplaceTable())
        return;
    QVector<ImportOrder> orders = restored.orders;
    run_->keepMarks(&orders);
    place_.panel->keepPlaceWhile([&] { place_.orders->setOrders(orders); });
}

void ImportRestorer::registerAgain()
{
    if (lookup_.isActive())
        return;
    lookup_.start(
        pendinglookup::wantedOf<ImportOrder>(unregistered_.in(place_.branch->identity().shopId)),
        place_.branch->identity(), place_.branch->publicPath(),
        [this](const Lookup::Answer &answer) { onFoundAgain(answer); });
}

void ImportRestorer::onFoundAgain(const Lookup::Answer &answer)
{
    pendinglookup::tellMissing(place_.window, answer);
    const auto offered = unregistered_.in(place_.branch->identity().shopId);
    QVector<ledger::EntryId> entries;
    QVector<ImportOrder> orders;
    for (const ImportOrder &order : answer.orders) {
        const auto entry =
            std::find_if(offered.cbegin(), offered.cend(), [&order](const ledger::Entry &each) {
                return each.order.identity == order.identity();
            });
        if (entry == offered.cend())
            continue; // is worked on by now
        orders.append(order);
        entries.append(entry->id);
    }
    Ledger::current().ask(
        this,
        [entries](const LedgerReader &reader) {
            QStringList targets;
            for (const ledger::EntryId entry : entries) {
                const auto copies = reader.copiesOfEntry(entry, 0, 1);
                targets.append(copies.isEmpty() ? QString() : copies.constFirst().target);
            }
            return targets;
        },
        [this, orders](const QStringList &targets) { registerIn(orders, targets); });
}

void ImportRestorer::registerIn(const QVector<ImportOrder> &orders, const QStringList &targets)
{
    for (int index = 0; index < orders.size(); ++index) {
        ImportOrder order = orders.at(index);
        const QString refusal = run_->refusalOf({order});
        if (!refusal.isEmpty()) {
            MessageBox::warning(place_.window, refusal);
            continue;
        }
        if (!choicerestoring::isInFolder(order, targets.at(index))) {
            MessageBox::warning(place_.window,
                                pendinglookup::movedText(order.displayName(), targets.at(index)));
            continue;
        }
        order.importPath = importrules::importPathOf(order);
        const int row = place_.orders->rowOf(order.identity());
        if (row >= 0) {
            order.files = place_.orders->order(row).files;
            order.everChosen = place_.orders->order(row).everChosen;
        }
        run_->registerAgain(order, place_.branch->identity());
    }
    countRest();
}

/// Whichever run copied them: what the service lists now is registered.
void ImportRestorer::onRegistered(const OrderIdentity &order, const RegistrationResult &result)
{
    const QStringList listed = result.reply.serverImages + result.reply.serverRawImages;
    if (!unregistered_.knows(order))
        return;
    Ledger::current().ask(
        this,
        [order, listed, work = choicerestoring::workOf(mode_)](const LedgerReader &reader) {
            QVector<ledger::CopyId> awaited;
            const auto copies = reader.copiesOfOrder(order, {work});
            for (const ledger::Copy &copy : copies) {
                const QString name = copy.target.section(QLatin1Char('\\'), -1);
                if (copy.registration == ledger::Registration::Awaited && listed.contains(name))
                    awaited.append(copy.id);
            }
            return awaited;
        },
        [this](const QVector<ledger::CopyId> &awaited) {
            Ledger::current().registerCopies(awaited);
            Toast::show(place_.window, QStringLiteral("已重新登记"));
            refresh();
        });
}
