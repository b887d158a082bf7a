#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

/// The way of tests and of the tour behind the counter of the demo studio service they run against:
/// what was requested, what it is to do wrong. Calls wait for the answer; a lost connection ends
/// the program, since nothing after it would mean anything.
class DemoClient
{
public:
    /// State, records, misbehaviour and share as at the start.
    void reset();
    /// What was requested, oldest first; of one action ("dologin") or all.
    QJsonArray requests(const QString &action = QString());
    void clearRequests();
    /// Such as {"action": "order_list", "kind": "drop", "times": 1}.
    void misbehave(const QString &action, const QString &kind, QJsonObject more = {});
    /// Keeps the answers of the action's next requests back; held() tells how many wait.
    void hold(const QString &action, int times = 1);
    /// Answers what is held back.
    void release();
    int held() { return state().value(QStringLiteral("held")).toInt(); }
    /// Refuses the action's next request.
    void refuse(const QString &action, const QString &message);
    /// What one of the action's requests said; of a negative index, counted from the last.
    QString body(const QString &action, int index = -1);
    QJsonObject state();
    QString share() { return state().value(QStringLiteral("share")).toString(); }
    /// Changes one order's fields, for both its records and the client's next search.
    void changeOrder(const QString &orderId, const QJsonObject &fields);
    /// From now on so many photos of the order are chosen; the caller puts them on the share.
    void choosePhotos(const QString &orderId, int count);
    void addOrders(int count, const QString &shopId);

private:
    QByteArray call(const QString &path, const QByteArray *body);
    void post(const QString &path, const QJsonObject &body);
};
