#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "net/orderqueries.h"
#include "net/servicecall.h"

#include <QObject>
#include <QString>

#include <functional>

/// Tells the service that a file is gone, asking what to do whenever that fails. One report at a
/// time. Interface thread.
class DeletionReporter : public QObject
{
    Q_OBJECT

public:
    explicit DeletionReporter(QObject *parent = nullptr);

    /// Calls \a done once: with true when the service knows, with false when the user, or
    /// giveUp(), let it be. The service may be told twice when its answer was lost.
    void deletePost_one(const orderqueries::Identity &identity, const QString &orderPhotoId,
                        const BatchDeleteFileInfo &file, std::function<void(bool)> done);
    /// The answer to resubmitNeeded(); ignored unless one is waited for.
    void answerResubmit(bool again);
    /// Ends the report under way, unanswered.
    void giveUp();
    /// From now on a report that fails has failed; nobody is asked.
    void stopAsking();
    void startAsking() { mayAsk_ = true; }

    bool isBusy() const { return done_ != nullptr; }
    bool isAsking() const { return asking_; }
    /// Why the last report failed.
    const QString &failure() const { return failure_; }

signals:
    /// Ask \a question and call answerResubmit(). \a certificateError is why no data was sent, when
    /// that is the reason.
    void resubmitNeeded(const QString &question, const QString &certificateError);

private:
    void send();
    void onReply(const ServiceReply &reply);
    void finish(bool reported);

    LatestCall call_;
    QByteArray body_;
    std::function<void(bool)> done_;
    QString failure_;
    bool asking_ = false;
    bool mayAsk_ = true;
};
