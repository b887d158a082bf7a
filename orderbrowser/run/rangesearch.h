#pragma once

#include "net/orderqueries.h"
#include "net/servicecall.h"
#include "orderbrowser/rules/orderlisting.h"
#include "orderbrowser/rules/orderviews.h"
#include "tasks/latest.h"
#include "tasks/requestqueue.h"

#include <QObject>
#include <QVector>

/// A search of the order browser's: one request, or for a range of dates one for each day, two of
/// them under way at a time, whose answers become one listing. A request that fails ends it, so
/// that nobody takes a part for the whole. Interface thread.
class RangeSearch : public QObject
{
    Q_OBJECT

public:
    explicit RangeSearch(QObject *parent = nullptr);

    /// An earlier one is abandoned. \a search has no problem.
    void start(const BrowserSearch &search, const orderqueries::Identity &who,
               const orderqueries::SearchedBranch &branch);
    /// Nothing more is heard of it.
    void cancel();

signals:
    /// So many requests of so many are answered.
    void progressed(int answered, int requests);
    /// The first failure, or success with what all of them found.
    void finished(const ServiceReply &reply, const OrderListing &listing);

private:
    void ask(const orderqueries::OrderSearch &search, int position);
    void take(const ServiceReply &reply, int position);
    void mergeAll();

    static constexpr int atOnce = 2;

    RequestQueue queue_{atOnce};
    QString personId_;
    orderqueries::Identity who_;
    orderqueries::SearchedBranch branch_;
    QVector<OrderListing> listings_; ///< in the order of the days
    int answered_ = 0;
    Latest merging_;
};
