#include "photoimport/window/photochoicerestorer.h"

#include "ledger/ledger.h"
#include "pending/pendinglookup.h"
#include "photoimport/orders/photochoices.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/rules/photorules.h"
#include "photoimport/run/photoimportrun.h"
#include "photoimport/window/tfhomeorders.h"
#include "photoimport/window/tfhomeorders_orderlistwidget.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/windows/loadingoverlay.h"

#include <algorithm>

using pendinglines::Kind;
using pendinglines::Offer;
using Lookup = OrderLookup<PhotoOrder>;

PhotoChoiceRestorer::PhotoChoiceRestorer(const Place &place)
    : QObject(place.window)
    , place_(place)
    , choices_(ledger::Work::PhotoImport,
               [orders = place.orders](
                   const OrderIdentity &id) -> std::optional<PendingChoices::Choice> {
                   const auto &listed = orders->orders(); // also while they are being replaced
                   const auto order =
                       std::find_if(listed.cbegin(), listed.cend(), [&id](const PhotoOrder &each) {
                           return each.identity() == id;
                       });
                   if (order == listed.cend())
                       return std::nullopt;
                   return photochoices::rememberedFiles(*order);
               })
    , bar_(new PendingBar(place.window, place.notices))
    , lookup_(this, &photoorders::readOrders)
    , unregistered_([this](const OrderIdentity &order) { return isOffered(order); })
    , deletions_(photorules::toolName())
{
    unregistered_.setWork(ledger::Work::PhotoImport);
    connect(&choices_, &PendingChoices::changed, this,
            [this] { bar_->setCounts(Kind::Choices, choices_.counts()); });
    connect(&unregistered_, &UnregisteredOrders::changed, this,
            &PhotoChoiceRestorer::countUnregistered);
    connect(place.panel, &tfhomeorders::changeShop, this, [this] {
        bar_->setBranch(place_.panel->identity().shopId);
        unregistered_.refresh();
        deletions_.refresh();
    });
    connect(&deletions_, &UnfinishedDeletions::changed, this, [this] {
        for (const Kind kind : UnfinishedDeletions::kinds())
            bar_->setCounts(kind, deletions_.counts(kind));
    });
    connect(&deletions_, &UnfinishedDeletions::finished, this,
            [this](const QString &text) { MessageBox::information(place_.window, text); });
    connect(place.panel->finder(), &OrderFinder::busyChanged, this, [this](bool isBusy) {
        if (isBusy)
            lookup_.cancel();
    });
    connect(place.overlay, &LoadingOverlay::cancelled, this, [this] { lookup_.cancel(); });
    connect(bar_, &PendingBar::taken, this,
            [this](Kind kind, Offer offer, const QString &branch) { take(kind, offer, branch); });
    connectTable();
    connectRun();
}

void PhotoChoiceRestorer::connectTable()
{
    const tforderlistmodel *orders = place_.orders;
    connect(orders, &QAbstractItemModel::modelAboutToBeReset, this,
            [this] { choices_.leaveTable(); });
    connect(orders, &QAbstractItemModel::modelReset, this, [this] {
        for (const PhotoOrder &order : place_.orders->orders()) {
            if (order.hasUnfinishedFiles())
                choices_.noteChoice(order.identity());
        }
        choices_.flush();
        countUnregistered();
    });
    connect(orders, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex &first, const QModelIndex &last) {
                for (int row = first.row(); row <= last.row(); ++row) {
                    const OrderIdentity order = place_.orders->order(row).identity();
                    if (place_.run->isImporting())
                        choices_.noteProgress(order);
                    else
                        choices_.noteChoice(order);
                }
            });
}

void PhotoChoiceRestorer::open()
{
    choices_.load();
}

void PhotoChoiceRestorer::connectRun()
{
    connect(place_.run, &PhotoImportRun::stateChanged, this, [this] {
        if (std::exchange(wasBusy_, place_.run->isBusy()) != place_.run->isBusy())
            countUnregistered();
    });
    connect(place_.run, &PhotoImportRun::toldAgain, this,
            [this](const UnregisteredPhotosRegistration::Outcome &outcome) {
                if (outcome.refusals.isEmpty())
                    Toast::show(place_.window, QStringLiteral("已重新登记"));
                else
                    MessageBox::warning(
                        place_.window,
                        BoxText(QStringLiteral("以下照片没有登记，仍会保留："), outcome.refusals));
                // What the service took is on its way into the ledger.
                Ledger::current().whenWritten(this, [this](bool) { unregistered_.refresh(); });
            });
}

void PhotoChoiceRestorer::take(Kind kind, Offer offer, const QString &branch)
{
    if (deletions_.take(kind, offer, place_.panel->identity(), place_.panel->publicPath()))
        return;
    switch (offer) {
    case Offer::Show:
        show();
        break;
    case Offer::Forget:
        choices_.forget(branch);
        break;
    case Offer::RegisterAgain:
        registerAgain();
        break;
    case Offer::Ignore:
        unregistered_.ignore(branch);
        break;
    case Offer::SwitchBranch:
        place_.panel->finder()->chooseBranch(branch);
        break;
    case Offer::DeleteFiles:
    case Offer::KeepFiles:
    case Offer::Verify:
    case Offer::Report:
        Q_UNREACHABLE(); // taken above, or another tool's
    }
}

void PhotoChoiceRestorer::countUnregistered()
{
    for (const Kind kind : {Kind::Unregistered, Kind::PartlyCopied})
        bar_->setCounts(kind, unregistered_.counts(kind));
}

/// The order's row says it itself while the service has refused files of it.
bool PhotoChoiceRestorer::isOffered(const OrderIdentity &order) const
{
    if (place_.run->isRegisteringAgain(order))
        return false;
    const int row = place_.orders->rowOf(order);
    if (row < 0)
        return true;
    const auto &summaries = place_.orders->order(row).summaries;
    return !place_.run->isQueuedOrActive(row) &&
           std::none_of(summaries.cbegin(), summaries.cend(),
                        [](const FilesSummary &summary) { return summary.unregistered > 0; });
}

bool PhotoChoiceRestorer::mayLookUp()
{
    if (place_.run->isBusy())
        MessageBox::warning(place_.window, QStringLiteral("导片中..."));
    return !place_.run->isBusy();
}

void PhotoChoiceRestorer::lookUp(const QVector<Lookup::Wanted> &wanted, const Lookup::Done &done)
{
    place_.panel->abandon();
    place_.overlay->showText(QStringLiteral("正在查询订单..."));
    lookup_.start(wanted, place_.panel->identity(), place_.panel->publicPath(),
                  [this, done](const Lookup::Answer &answer) {
                      place_.overlay->hideOverlay();
                      pendinglookup::tellMissing(place_.window, answer);
                      done(answer);
                  });
}

void PhotoChoiceRestorer::show()
{
    if (mayLookUp())
        lookUp(
            pendinglookup::wantedOf<PhotoOrder>(choices_.waiting(place_.panel->identity().shopId)),
            [this](const Lookup::Answer &answer) { putBack(answer); });
}

void PhotoChoiceRestorer::putBack(const Lookup::Answer &answer)
{
    if (answer.orders.isEmpty() || place_.run->isBusy())
        return;
    const auto choices = choices_.waiting(place_.panel->identity().shopId);
    place_.panel->table()->keepPlaceWhile([&] {
        place_.orders->setOrders(
            photochoices::restored(place_.orders->orders(), answer.orders, choices));
    });
    emit place_.panel->ordersChanged();
}

void PhotoChoiceRestorer::registerAgain()
{
    if (mayLookUp())
        lookUp(
            pendinglookup::wantedOf<PhotoOrder>(unregistered_.in(place_.panel->identity().shopId)),
            [this](const Lookup::Answer &answer) { onFoundAgain(answer.orders); });
}

void PhotoChoiceRestorer::onFoundAgain(const QVector<PhotoOrder> &orders)
{
    for (const PhotoOrder &order : orders) {
        Ledger::current().ask(
            this,
            [id = order.identity()](const LedgerReader &reader) {
                return reader.copiesOfOrder(id, {ledger::Work::PhotoImport});
            },
            [this, order](const QVector<ledger::Copy> &copies) { registerOrder(order, copies); });
    }
}

void PhotoChoiceRestorer::registerOrder(const PhotoOrder &order,
                                        const QVector<ledger::Copy> &copies)
{
    if (!isOffered(order.identity()))
        return; // is worked on by now
    const UnregisteredPhotos photos = UnregisteredPhotos::of(order, copies);
    if (!photos.elsewhere.isEmpty())
        MessageBox::warning(place_.window,
                            pendinglookup::movedText(order.displayName(), photos.elsewhere));
    else if (photos.order.photos.isEmpty())
        unregistered_.refresh(); // done by another program meanwhile
    else
        place_.run->registerAgain(order, photos, place_.panel->identity());
}
