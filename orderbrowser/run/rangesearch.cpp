#include "orderbrowser/run/rangesearch.h"

#include "tasks/background.h"

RangeSearch::RangeSearch(QObject *parent) : QObject(parent)
{
}

void RangeSearch::start(const BrowserSearch &search, const orderqueries::Identity &who,
                        const orderqueries::SearchedBranch &branch)
{
    cancel();
    personId_ = search.personId.isNull() ? QString::fromLatin1("") : search.personId;
    who_ = who;
    branch_ = branch;
    const auto searches = search.singleSearches();
    listings_ = QVector<OrderListing>(searches.size());
    answered_ = 0;
    for (int i = 0; i < searches.size(); ++i)
        ask(searches.at(i), i);
}

void RangeSearch::cancel()
{
    queue_.abandon();
    merging_.abandon();
}

void RangeSearch::ask(const orderqueries::OrderSearch &search, int position)
{
    const QByteArray body = orderqueries::orderListBody(search, who_, personId_);
    queue_.add([this, body, position](QObject *scope, const RequestQueue::Ended &ended) {
        auto *call = new LatestCall(scope);
        call->start(
            orderqueries::orderListAction, body,
            [this, call, position, ended](const ServiceReply &reply) {
                call->deleteLater();
                if (ended())
                    take(reply, position);
            },
            [branch = branch_](const QJsonObject &reply) {
                return std::any(orderlistings::read(reply, branch));
            });
    });
}

void RangeSearch::take(const ServiceReply &reply, int position)
{
    if (!reply.isSuccess()) {
        cancel();
        emit finished(reply, {});
        return;
    }
    listings_[position] = std::any_cast<const OrderListing &>(reply.made);
    emit progressed(++answered_, listings_.size());
    if (answered_ == listings_.size())
        mergeAll();
}

void RangeSearch::mergeAll()
{
    onProcessor(
        this, [listings = std::exchange(listings_, {})] { return orderlistings::merged(listings); },
        merging_.only([this](const OrderListing &all) {
            ServiceReply reply;
            reply.outcome = ServiceReply::Outcome::Success;
            emit finished(reply, all);
        }));
}
