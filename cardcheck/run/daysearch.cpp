#include "cardcheck/run/daysearch.h"

void DaySearch::start(const QVector<QDate> &days, const orderqueries::Identity &who,
                      const orderqueries::SearchedBranch &branch)
{
    cancel();
    all_ = {};
    all_.found.isList = true;
    awaited_ = days.size();
    for (const QDate &day : days) {
        orderqueries::OrderSearch search;
        search.type = orderqueries::OrderSearch::ShootingDate;
        search.shootingDate = day;
        const QByteArray body = orderqueries::orderListBody(search, who);
        queue_.add([this, body, branch](QObject *scope, const RequestQueue::Ended &ended) {
            auto *call = new LatestCall(scope);
            call->start(
                orderqueries::orderListAction, body,
                [this, call, ended](const ServiceReply &reply) {
                    call->deleteLater();
                    if (ended())
                        take(reply);
                },
                [branch](const QJsonObject &reply) {
                    return std::any(Answer{soughtorders::read(reply, branch),
                                           orderfolders::read(reply, branch)});
                });
        });
    }
}

void DaySearch::take(const ServiceReply &reply)
{
    if (!reply.isSuccess()) {
        cancel();
        emit finished(reply, {}, {});
        return;
    }
    const auto &answer = std::any_cast<const Answer &>(reply.made);
    all_.found.elements += answer.found.elements;
    all_.found.orders = soughtorders::joined(all_.found.orders, answer.found.orders);
    all_.folders += answer.folders;
    if (--awaited_ == 0)
        emit finished(reply, all_.found, all_.folders);
}
