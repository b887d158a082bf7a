#pragma once

#include <QJsonObject>
#include <QMetaType>
#include <QObject>
#include <QPointer>
#include <QString>

#include <any>
#include <functional>

class BaseReq;

/// How a call to the service ended, as its caller tells the cases apart.
struct ServiceReply
{
    enum class Outcome {
        Success,            ///< the service did what was asked
        Refused,            ///< the service answered and said no, or more than can be read
        NoAnswer,           ///< nothing usable came back
        CertificateRefused, ///< we did not trust the server
    };

    Outcome outcome = Outcome::NoAnswer;
    QJsonObject object; ///< the whole reply; empty without an answer
    QString message;    ///< refusal: the reply's "message"; certificate refused: the reason
    QString msg;        ///< refusal: the reply's "msg", which some actions use instead
    std::any made;      ///< success: what a ReplyReader made of it, if there was one

    bool isSuccess() const { return outcome == Outcome::Success; }
};
Q_DECLARE_METATYPE(ServiceReply)

using ServiceHandler = std::function<void(const ServiceReply &)>;

/// Makes records of a good reply on a thread, in one trip with its parsing.
using ReplyReader = std::function<std::any(const QJsonObject &reply)>;

/// Sends one request and hands the reply over once, on the owner's thread. When \a owner dies
/// first, \a handler never runs.
void callService(QObject *owner, const QString &action, const QByteArray &body,
                 ServiceHandler handler);

/// A kind of request of which only the latest counts, such as a search: starting another abandons
/// the one in flight, whose handler then never runs.
class LatestCall : public QObject
{
    Q_OBJECT

public:
    explicit LatestCall(QObject *owner);

    void start(const QString &action, const QByteArray &body, ServiceHandler handler,
               const ReplyReader &reader = {});
    /// Abandons the request in flight, if there is one.
    void cancel();
    bool isActive() const { return !request_.isNull(); }

private:
    QPointer<BaseReq> request_;
};
