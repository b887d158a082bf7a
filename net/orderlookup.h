#pragma once

#include "net/orderqueries.h"
#include "net/servicecall.h"

#include <QObject>
#include <QString>
#include <QVector>

#include <algorithm>
#include <functional>
#include <utility>

/// Asks the service anew for orders of which no more is known than who they are and their number.
/// What was remembered of an order may be wrong by now; what this answers is what to work with. One
/// search after the other. Deleting it abandons them. Interface thread.
template <typename Order> class OrderLookup
{
public:
    struct Wanted
    {
        OrderIdentity order;
        QString number; ///< what users search it by
    };
    struct Answer
    {
        QVector<Order> orders;   ///< exactly those that were wanted and are listed
        QVector<Wanted> missing; ///< that are not
        ServiceReply reply;      ///< the last one; what failed when it is no success
    };
    using Read = std::function<orderqueries::FoundOrders<Order>(
        const QJsonObject &reply, const orderqueries::SearchedBranch &branch)>;
    using Done = std::function<void(const Answer &answer)>;

    /// \a read makes a tool's list of a reply, on a thread.
    OrderLookup(QObject *owner, Read read) : call_(owner), read_(std::move(read)) {}

    /// Those of another branch than \a identity's are missing. An earlier lookup is abandoned.
    void start(const QVector<Wanted> &wanted, const orderqueries::Identity &identity,
               const QString &publicPath, Done done)
    {
        cancel();
        wanted_ = wanted;
        identity_ = identity;
        publicPath_ = publicPath;
        done_ = std::move(done);
        answer_ = {};
        answer_.reply.outcome = ServiceReply::Outcome::Success;
        next();
    }
    void cancel()
    {
        call_.cancel();
        done_ = nullptr;
    }
    bool isActive() const { return done_ != nullptr; }

private:
    void next()
    {
        if (wanted_.isEmpty()) {
            std::exchange(done_, nullptr)(answer_);
            return;
        }
        orderqueries::OrderSearch search;
        search.text = wanted_.constFirst().number;
        const orderqueries::SearchedBranch branch{identity_.shopId, publicPath_};
        call_.start(
            orderqueries::orderListAction, orderqueries::orderListBody(search, identity_),
            [this](const ServiceReply &reply) { onReply(reply); },
            [read = read_, branch](const QJsonObject &reply) {
                return std::any(read(reply, branch));
            });
    }
    void onReply(const ServiceReply &reply)
    {
        answer_.reply = reply;
        if (!reply.isSuccess()) {
            answer_.missing += std::exchange(wanted_, {});
            next();
            return;
        }
        const auto &list = *std::any_cast<orderqueries::FoundOrders<Order>>(&reply.made);
        const QString number = wanted_.constFirst().number;
        QVector<Wanted> rest;
        for (const Wanted &each : qAsConst(wanted_)) {
            if (each.number != number) {
                rest.append(each);
                continue;
            }
            const auto found =
                std::find_if(list.orders.cbegin(), list.orders.cend(), [&each](const Order &order) {
                    return order.identity() == each.order;
                });
            if (found == list.orders.cend())
                answer_.missing.append(each);
            else
                answer_.orders.append(*found);
        }
        wanted_ = rest;
        next();
    }

    LatestCall call_;
    Read read_;
    QVector<Wanted> wanted_; ///< still to be asked for
    orderqueries::Identity identity_;
    QString publicPath_;
    Done done_;
    Answer answer_;
};
