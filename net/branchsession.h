#pragma once

#include "net/orderqueries.h"
#include "net/servicecall.h"

#include <QObject>
#include <QString>
#include <QVector>

#include <any>
#include <functional>
#include <utility>

/// Whom one tool window acts as, and what it asks the service in that name: switching the branch,
/// listing its staff and searching orders. Seeded from the account context when the window opens,
/// replaced by its own switches alone. The latest switch wins, and so does the latest search; a
/// switch ends a search.
class BranchSession : public QObject
{
    Q_OBJECT

public:
    explicit BranchSession(QObject *parent = nullptr);

    /// Changes only with switched().
    const orderqueries::Identity &identity() const { return identity_; }
    /// Public import root of the branch, in Windows form; may be empty.
    const QString &publicPath() const { return publicPath_; }
    /// Whether the user may delete the files of whole orders there.
    bool mayDeleteAllPhotos() const { return mayDeleteAllPhotos_; }
    /// The branch's flag for design distribution, as the service words it.
    const QString &distributionMode() const { return distributionMode_; }
    /// Whether the service has confirmed the branch.
    bool isConfirmed() const { return confirmed_; }

    /// What makes a tool's records of a good answer to a search, on a thread; they come along with
    /// searched(). The branch is the one that was searched.
    using OrderReader = std::function<std::any(const QJsonObject &reply,
                                               const orderqueries::SearchedBranch &branch)>;
    void setOrderReader(OrderReader reader) { readOrders_ = std::move(reader); }

    void switchTo(const QString &shopId);
    /// \a role7id: see orderqueries::orderListBody().
    void search(const orderqueries::OrderSearch &search, const QString &role7id = QString());
    /// A search that a tool words itself; its answer comes as any other's.
    void search(const QString &action, const QByteArray &body);
    /// The persons of the branch, for a person filter.
    void listPersons();
    /// Abandons the switch or search under way; nothing more is heard of it.
    void cancel();
    void cancelSearch();

signals:
    void switched();
    /// The branch stays what it was. \a refusal is what to tell the user when the service answered.
    void switchFailed(const ServiceReply &reply, const QString &refusal);
    void personsListed(const QVector<orderqueries::Person> &persons);
    void personsFailed(const ServiceReply &reply);
    /// The answer to the latest search, good or bad.
    void searched(const ServiceReply &reply);

private:
    void onSwitchReply(const QString &shopId, const ServiceReply &reply);

    orderqueries::Identity identity_;
    QString publicPath_;
    bool mayDeleteAllPhotos_ = false;
    QString distributionMode_;
    bool confirmed_ = false;
    LatestCall switchCall_;
    LatestCall personsCall_;
    LatestCall searchCall_;
    OrderReader readOrders_;
};
