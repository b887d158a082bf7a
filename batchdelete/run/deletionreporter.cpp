#include "batchdelete/run/deletionreporter.h"

#include "batchdelete/rules/deletionrequests.h"

#include <QDebug>

#include <utility>

DeletionReporter::DeletionReporter(QObject *parent) : QObject(parent), call_(this)
{
}

void DeletionReporter::deletePost_one(const orderqueries::Identity &identity,
                                      const QString &orderPhotoId, const BatchDeleteFileInfo &file,
                                      std::function<void(bool)> done)
{
    Q_ASSERT(!isBusy());
    qDebug() << "打印一下filePath：" << file.fullPath();
    body_ = deletionrequests::reportBody(identity, orderPhotoId, file);
    done_ = std::move(done);
    failure_.clear();
    send();
}

void DeletionReporter::send()
{
    call_.start(deletionrequests::reportAction, body_,
                [this](const ServiceReply &reply) { onReply(reply); });
}

void DeletionReporter::onReply(const ServiceReply &reply)
{
    if (reply.isSuccess()) {
        finish(true);
        return;
    }
    const bool refused = reply.outcome == ServiceReply::Outcome::Refused;
    failure_ = refused ? reply.message : QStringLiteral("删除信息提交失败");
    if (failure_.isEmpty())
        failure_ = QStringLiteral("服务拒绝了请求，但没有说明原因");
    if (!mayAsk_) {
        finish(false);
        return;
    }
    asking_ = true;
    const bool untrusted = reply.outcome == ServiceReply::Outcome::CertificateRefused;
    emit resubmitNeeded(failure_ + QStringLiteral("，需要继续提交吗？"),
                        untrusted ? reply.message : QString());
}

void DeletionReporter::answerResubmit(bool again)
{
    if (!asking_)
        return;
    asking_ = false;
    if (again)
        send();
    else
        finish(false);
}

void DeletionReporter::giveUp()
{
    if (!isBusy())
        return;
    call_.cancel();
    if (failure_.isEmpty())
        failure_ = QStringLiteral("删除信息提交失败");
    finish(false);
}

void DeletionReporter::stopAsking()
{
    mayAsk_ = false;
    answerResubmit(false);
}

void DeletionReporter::finish(bool reported)
{
    asking_ = false;
    const auto done = std::exchange(done_, nullptr);
    done(reported);
}
