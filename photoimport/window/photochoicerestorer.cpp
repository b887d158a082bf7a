#include "photoimport/window/photochoicerestorer.h"

#include "pending/pendingdesk.h"
#include "photoimport/orders/photochoices.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/run/photoimportrun.h"
#include "photoimport/window/tfhomeorders.h"
#include "photoimport/window/tfhomeorders_orderlistwidget.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
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
{
    connect(&choices_, &PendingChoices::changed, this, &PhotoChoiceRestorer::count);
    connect(place.panel, &tfhomeorders::changeShop, this,
            [this] { bar_->setBranch(place_.panel->identity().shopId); });
    connect(place.panel->finder(), &OrderFinder::busyChanged, this, [this](bool isBusy) {
        if (isBusy)
            lookup_.cancel();
    });
    connect(place.overlay, &LoadingOverlay::cancelled, this, [this] { lookup_.cancel(); });
    connect(bar_, &PendingBar::taken, this, [this](Kind, Offer offer, const QString &branch) {
        if (offer == Offer::SwitchBranch)
            place_.panel->finder()->chooseBranch(branch);
        else if (offer == Offer::Forget)
            choices_.forget(branch);
        else
            show();
    });
    connectTable();
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

void PhotoChoiceRestorer::count()
{
    QVector<pendinglines::Count> counts;
    const QStringList branches = choices_.branches();
    for (const QString &branch : branches) {
        pendinglines::Count count{Kind::Choices, branch, 0, 0};
        const auto waiting = choices_.waiting(branch);
        for (const PendingChoices::Choice &choice : waiting) {
            ++count.orders;
            count.files += choice.files.size();
        }
        counts.append(count);
    }
    bar_->setCounts(Kind::Choices, counts);
}

void PhotoChoiceRestorer::show()
{
    if (place_.run->isBusy()) {
        MessageBox::warning(place_.window, QStringLiteral("导片中..."));
        return;
    }
    QVector<Lookup::Wanted> wanted;
    const auto waiting = choices_.waiting(place_.panel->identity().shopId);
    for (const PendingChoices::Choice &choice : waiting)
        wanted.append({choice.order.identity, searchedNumber(choice.order.number)});
    place_.panel->abandon();
    place_.overlay->showText(QStringLiteral("正在查询订单..."));
    lookup_.start(wanted, place_.panel->identity(), place_.panel->publicPath(),
                  [this](const Lookup::Answer &answer) { putBack(answer); });
}

void PhotoChoiceRestorer::putBack(const Lookup::Answer &answer)
{
    place_.overlay->hideOverlay();
    if (!answer.reply.isSuccess()) {
        showServiceFailure(place_.window, answer.reply, answer.reply.message);
    } else if (!answer.missing.isEmpty()) {
        QStringList numbers;
        for (const Lookup::Wanted &each : answer.missing)
            numbers.append(each.number);
        MessageBox::warning(place_.window,
                            BoxText(QStringLiteral("服务端没有找到以下订单，仍会保留："), numbers));
    }
    if (answer.orders.isEmpty() || place_.run->isBusy())
        return;
    const auto choices = choices_.waiting(place_.panel->identity().shopId);
    place_.panel->table()->keepPlaceWhile([&] {
        place_.orders->setOrders(
            photochoices::restored(place_.orders->orders(), answer.orders, choices));
    });
    emit place_.panel->ordersChanged();
}
