#pragma once

#include "cardcheck/rules/evidence.h"
#include "net/orderfiles.h"
#include "net/orderqueries.h"
#include "tasks/requestqueue.h"

#include <QHash>
#include <QObject>

#include <any>
#include <functional>

/// What the service lists of orders, each asked for once, a few at a time. Orders of another branch
/// than the one that is acted for are not asked about. Interface thread.
class ServiceLists : public QObject
{
    Q_OBJECT

public:
    explicit ServiceLists(QObject *parent = nullptr);

    /// Forgets everything; what is under way ends silently. From now on \a who asks.
    void reset(const orderqueries::Identity &who);
    /// \a withVideos: what is listed with the order itself, too. Asking again does nothing.
    void ask(const ledger::OrderKey &order, bool withVideos);
    /// Null while there is no answer to all that was asked.
    const evidence::ServiceList *of(const OrderIdentity &order) const;
    bool isBusy() const { return pending_ > 0; }

signals:
    void answered(const OrderIdentity &order);

private:
    struct Asked
    {
        evidence::ServiceList list;
        bool imported = false; ///< asked
        bool videos = false;
        int pending = 0;
    };
    using Files = QVector<orderfiles::ListedFile>;
    using Read = std::function<std::any(const QJsonObject &reply)>;

    void send(const OrderIdentity &order, const QString &action, const QByteArray &body,
              const Read &read);
    void take(const OrderIdentity &order, const Files *files);

    static constexpr int atOnce = 2;

    RequestQueue queue_{atOnce};
    orderqueries::Identity who_;
    QHash<OrderIdentity, Asked> asked_;
    int pending_ = 0;
    qint64 lastTimestamp_ = 0;
};
