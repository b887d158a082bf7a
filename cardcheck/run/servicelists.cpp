#include "cardcheck/run/servicelists.h"

#include "files/paths.h"
#include "net/orderfiles.h"
#include "net/servicecall.h"

#include <QDateTime>

#include <algorithm>
#include <iterator>

using evidence::ServiceList;

namespace {

/// The number without that of the service, which is what orders are searched by.
QString searchNumber(const QString &shown)
{
    const int dash = shown.lastIndexOf(QLatin1Char('-'));
    return dash < 0 ? shown : shown.left(dash);
}

/// The photos that the customers chose are listed there, too.
QVector<orderfiles::ListedFile> videosAmong(const QVector<orderfiles::ListedFile> &listed)
{
    QVector<orderfiles::ListedFile> videos;
    std::copy_if(listed.cbegin(), listed.cend(), std::back_inserter(videos),
                 [](const orderfiles::ListedFile &file) {
                     return evidence::registeredAs(file.localPath) ==
                            evidence::Registered::AmongVideos;
                 });
    return videos;
}

} // namespace

ServiceLists::ServiceLists(QObject *parent) : QObject(parent)
{
}

void ServiceLists::reset(const orderqueries::Identity &who)
{
    queue_.abandon();
    asked_.clear();
    pending_ = 0;
    who_ = who;
}

void ServiceLists::ask(const ledger::OrderKey &order, bool withVideos)
{
    const OrderIdentity identity = order.identity;
    Asked &asked = asked_[identity];
    asked.list.order = identity;
    if (!orderqueries::mayWorkOn(identity, who_)) {
        asked.list.state = ServiceList::State::OtherBranch;
        return;
    }
    if (!std::exchange(asked.imported, true)) {
        // Each request has a time of its own, by which an answer is known.
        lastTimestamp_ = std::max(lastTimestamp_ + 1, QDateTime::currentMSecsSinceEpoch());
        const QString timestamp = QString::number(lastTimestamp_);
        send(identity, orderfiles::listAction,
             orderfiles::listBody(identity.branch, identity.orderPhotoId, timestamp),
             [timestamp](const QJsonObject &reply) {
                 return orderfiles::isStale(reply, timestamp)
                            ? std::any()
                            : std::any(orderfiles::readList(reply));
             });
    }
    if (withVideos && !std::exchange(asked.videos, true)) {
        orderqueries::OrderSearch search;
        search.text = searchNumber(order.number);
        send(identity, orderqueries::orderListAction, orderqueries::orderListBody(search, who_),
             [identity](const QJsonObject &reply) {
                 const auto listed = orderfiles::readWithOrder(reply, identity);
                 return listed ? std::any(videosAmong(*listed)) : std::any();
             });
    }
}

const ServiceList *ServiceLists::of(const OrderIdentity &order) const
{
    const auto asked = asked_.constFind(order);
    return asked != asked_.cend() && asked->pending == 0 ? &asked->list : nullptr;
}

void ServiceLists::send(const OrderIdentity &order, const QString &action, const QByteArray &body,
                        const Read &read)
{
    ++asked_[order].pending;
    ++pending_;
    queue_.add([this, order, action, body, read](QObject *scope, const RequestQueue::Ended &ended) {
        auto *call = new LatestCall(scope);
        call->start(
            action, body,
            [this, call, order, ended](const ServiceReply &reply) {
                call->deleteLater();
                if (ended())
                    take(order, reply.isSuccess() ? std::any_cast<Files>(&reply.made) : nullptr);
            },
            read);
    });
}

void ServiceLists::take(const OrderIdentity &order, const Files *files)
{
    --pending_;
    Asked &asked = asked_[order];
    --asked.pending;
    if (!files) {
        asked.list.state = ServiceList::State::Failed;
    } else {
        if (asked.list.state == ServiceList::State::NotAsked)
            asked.list.state = ServiceList::State::Answered;
        asked.list.files += *files;
        for (const orderfiles::ListedFile &file : *files) {
            if (file.localPath.isEmpty())
                asked.list.names.insert(file.name.toLower());
            else
                asked.list.paths.insert(wirePathKey(file.localPath));
        }
    }
    if (asked.pending == 0)
        emit answered(order);
}
