#pragma once

#include "tasks/latest.h"

#include <QObject>
#include <QQueue>

#include <functional>
#include <memory>

/// Requests in the order in which they were asked for, a few under way at a time: the rest waits
/// here, so that a slow service does not pile up thousands of connections. Lives on one thread.
class RequestQueue : public QObject
{
    Q_OBJECT

public:
    /// To be called once when a request is answered; false when it was abandoned meanwhile.
    using Ended = std::function<bool()>;
    /// Sends one request, whose owner is to be \a scope: that goes when it is abandoned.
    using Request = std::function<void(QObject *scope, const Ended &ended)>;

    explicit RequestQueue(int atOnce, QObject *parent = nullptr);
    ~RequestQueue() override;

    void add(const Request &request);
    /// Waiting or under way.
    int pending() const { return waiting_.size() + underWay_; }
    /// Whether idle() is due.
    bool isBusy() const { return busy_; }
    /// Forgets what waits; what is under way ends silently, and so does this.
    void abandon();

signals:
    /// Nothing waits or is under way any more.
    void idle();

private:
    void feed();

    const int atOnce_;
    QQueue<Request> waiting_;
    int underWay_ = 0;
    bool busy_ = false;
    Latest rounds_; ///< each ends with abandon()
    Latest::Token round_ = rounds_.next();
    std::unique_ptr<QObject> scope_;
};
