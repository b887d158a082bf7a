#pragma once

#include "cardcheck/rules/soughtorders.h"
#include "net/orderfolders.h"
#include "net/servicecall.h"
#include "tasks/requestqueue.h"

#include <QDate>
#include <QObject>
#include <QVector>

/// Finds the orders that were shot on certain days: one request a day, whose answers become one
/// list. A request that fails ends it. Interface thread.
class DaySearch : public QObject
{
    Q_OBJECT

public:
    explicit DaySearch(QObject *parent = nullptr) : QObject(parent) {}

    /// An earlier one is abandoned.
    void start(const QVector<QDate> &days, const orderqueries::Identity &who,
               const orderqueries::SearchedBranch &branch);
    /// Nothing more is heard of it.
    void cancel() { queue_.abandon(); }

signals:
    void finished(const ServiceReply &reply, const soughtorders::Found &found,
                  const QVector<orderfolders::OrderFolder> &folders);

private:
    struct Answer
    {
        soughtorders::Found found;
        QVector<orderfolders::OrderFolder> folders;
    };
    void take(const ServiceReply &reply);

    static constexpr int atOnce = 2;

    RequestQueue queue_{atOnce};
    int awaited_ = 0;
    Answer all_;
};
