#include "fileimport/imported/originaldeletion.h"

#include "ledger/orderkey.h"
#include "tasks/background.h"

#include <QDateTime>
#include <QDebug>
#include <QPointer>
#include <QTimer>

namespace {

constexpr int filesAtOnce = 4;
constexpr int stopPatienceMs = 5000;
constexpr int answerPatienceMs = 10000;

ledger::OrderKey keyOf(const originalrequests::OrderMap &order)
{
    const auto value = [&order](const char *key) { return order.value(QString::fromLatin1(key)); };
    return ledger::orderKey(originalrequests::identityOf(order), value("orderpayforkey"),
                            value("servicetimes"), {value("mname"), value("wname")});
}

void tellPoolIsSlow()
{
    qDebug() << "警告：线程池未能在5秒内完成所有任务";
}

} // namespace

OriginalDeletion::OriginalDeletion(DeleteFileRunnable::RemoveFunction remove, QObject *parent)
    : QObject(parent)
    , remove_(std::move(remove))
    , call_(this)
    , pool_(QStringLiteral("photo-deletion"), filesAtOnce)
{
    qRegisterMetaType<DeleteFileResult>();
    answerTimer_.setSingleShot(true);
    answerTimer_.setInterval(answerPatienceMs);
    connect(&answerTimer_, &QTimer::timeout, this, &OriginalDeletion::giveUpAnswer);
}

OriginalDeletion::~OriginalDeletion()
{
    qDebug() << "开始清理线程池...";
    stopped_.raise();
    pool_.clear();
    if (pool_.waitForDone(stopPatienceMs))
        qDebug() << "线程池已安全清理";
    else
        tellPoolIsSlow();
}

bool OriginalDeletion::start(const originalrequests::OrderMap &order,
                             const QVector<PhotoEntry> &entries, const QVector<ImportOrder> &listed)
{
    if (isBusy())
        return false;
    phase_ = Phase::Planning;
    summary_ = {};
    left_.clear();
    resultText_.clear();
    total_ = 0;
    stopped_ = StopFlag();
    onProcessor(
        this, [order, listed] { return photoPlaceOf(order, listed); },
        planning_.only(
            [this, order, entries](const PhotoPlace &place) { record(order, entries, place); }));
    return true;
}

void OriginalDeletion::record(const originalrequests::OrderMap &order,
                              const QVector<PhotoEntry> &entries, const PhotoPlace &place)
{
    QVector<PhotoDeletionRecording::Photo> photos;
    for (const PhotoEntry &entry : entries) {
        if (place.holds(entry.localPath)) // others are never touched
            photos.append({entry.id, entry.localPath});
    }
    recording_.begin(keyOf(order), photos,
                     [this, order, entries, place] { submit(order, entries, place); });
}

void OriginalDeletion::submit(const originalrequests::OrderMap &order,
                              const QVector<PhotoEntry> &entries, const PhotoPlace &place)
{
    QStringList ids;
    for (const PhotoEntry &entry : entries)
        ids.append(entry.id);
    const QString now = QString::number(QDateTime::currentMSecsSinceEpoch());
    phase_ = Phase::Submitted;
    call_.start(
        originalrequests::deleteAction, originalrequests::deleteBody(order, ids, now),
        [this, entries, place](const ServiceReply &reply) { onReply(reply, entries, place); });
}

void OriginalDeletion::onReply(const ServiceReply &reply, const QVector<PhotoEntry> &entries,
                               const PhotoPlace &place)
{
    answerTimer_.stop();
    if (reply.isSuccess()) {
        onAgreed(entries, place);
        return;
    }
    // An answer that cannot be read is none.
    const bool isKnown =
        reply.outcome == ServiceReply::Outcome::CertificateRefused || !reply.object.isEmpty();
    if (isKnown)
        recording_.refused(reply.message.isEmpty() ? QStringLiteral("提交数据失败")
                                                   : reply.message);
    else
        recording_.unanswered();
    const QPointer<OriginalDeletion> alive(this);
    emit submitFailed(reply);
    if (alive && !isKnown)
        emit unanswered();
    if (alive)
        end();
}

void OriginalDeletion::onAgreed(const QVector<PhotoEntry> &entries, const PhotoPlace &place)
{
    phase_ = Phase::Removing;
    recording_.announced();
    total_ = entries.size();
    emit progressed(0, total_);
    qDebug() << "开始删除" << total_ << "个文件";
    for (int position = 0; position < total_; ++position) {
        const auto task =
            std::make_shared<DeleteFileRunnable>(entries.at(position), place, stopped_, remove_);
        connect(
            task.get(), &DeleteFileRunnable::deleteFinished, this,
            [this, position](const DeleteFileResult &result) {
                onDeleteFinished(position, result);
            },
            Qt::QueuedConnection);
        pool_.start(task);
    }
}

void OriginalDeletion::onDeleteFinished(int position, const DeleteFileResult &result)
{
    ++(result.success ? summary_.succeeded : summary_.failed);
    resultText_ += QLatin1Char('\n') + result.message;
    if (!result.message.isEmpty())
        left_.insert(position, result);
    if (result.isGone)
        recording_.gone(result.photo.localPath);
    else
        recording_.failed(result.photo.localPath, result.message);
    const int done = summary_.succeeded + summary_.failed;
    emit progressed(done, total_);
    if (done == total_)
        finish();
}

void OriginalDeletion::finish()
{
    qDebug() << "删除完成 - 成功:" << summary_.succeeded << " 失败:" << summary_.failed;
    qDebug() << "删除失败的信息:" << resultText_;
    for (const DeleteFileResult &left : qAsConst(left_))
        summary_.left.append(left);
    const OriginalDeletionSummary summary = summary_;
    const QPointer<OriginalDeletion> alive(this);
    emit finished(summary);
    if (alive)
        end();
}

void OriginalDeletion::end()
{
    phase_ = Phase::Idle;
    recording_.end();
    emit ended();
}

void OriginalDeletion::cancel()
{
    if (phase_ == Phase::Planning) {
        planning_.abandon();
        end();
    } else if (phase_ == Phase::Submitted) {
        giveUpAnswer();
    }
}

void OriginalDeletion::giveUpAnswer()
{
    answerTimer_.stop();
    call_.cancel();
    recording_.unanswered();
    const QPointer<OriginalDeletion> alive(this);
    emit unanswered();
    if (alive)
        end();
}

void OriginalDeletion::stop()
{
    stopped_.raise();
    switch (phase_) {
    case Phase::Idle:
        break;
    case Phase::Planning:
        cancel();
        break;
    case Phase::Submitted:
        answerTimer_.start();
        break;
    case Phase::Removing:
        // The tasks answer, those that had not begun at once; the last answer ends it.
        QTimer::singleShot(stopPatienceMs, this, [this] {
            if (isBusy())
                tellPoolIsSlow();
        });
        break;
    }
}
