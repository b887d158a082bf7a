#include "fileimport/imported/originaldeletion.h"

#include "tasks/background.h"

#include <QDateTime>
#include <QDebug>
#include <QPointer>
#include <QTimer>

namespace {

constexpr int filesAtOnce = 4;
constexpr int stopPatienceMs = 5000;

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
    if (busy_)
        return false;
    busy_ = true;
    summary_ = {};
    resultText_.clear();
    total_ = 0;
    stopped_ = StopFlag();
    onProcessor(
        this, [order, listed] { return photoPlaceOf(order, listed); },
        planning_.only(
            [this, order, entries](const PhotoPlace &place) { submit(order, entries, place); }));
    return true;
}

void OriginalDeletion::submit(const originalrequests::OrderMap &order,
                              const QVector<PhotoEntry> &entries, const PhotoPlace &place)
{
    QStringList ids;
    for (const PhotoEntry &entry : entries)
        ids.append(entry.id);
    const QString now = QString::number(QDateTime::currentMSecsSinceEpoch());
    call_.start(originalrequests::deleteAction, originalrequests::deleteBody(order, ids, now),
                [this, entries, place](const ServiceReply &reply) {
                    if (reply.isSuccess()) {
                        onAgreed(entries, place);
                        return;
                    }
                    busy_ = false;
                    const QPointer<OriginalDeletion> alive(this); // boxes may be shown meanwhile
                    emit submitFailed(reply);
                    if (alive)
                        emit ended();
                });
}

void OriginalDeletion::onAgreed(const QVector<PhotoEntry> &entries, const PhotoPlace &place)
{
    total_ = entries.size();
    emit progressed(0, total_);
    qDebug() << "开始删除" << total_ << "个文件";
    for (const PhotoEntry &entry : entries) {
        const auto task = std::make_shared<DeleteFileRunnable>(entry, place, stopped_, remove_);
        connect(task.get(), &DeleteFileRunnable::deleteFinished, this,
                &OriginalDeletion::onDeleteFinished, Qt::QueuedConnection);
        pool_.start(task);
    }
}

void OriginalDeletion::onDeleteFinished(const DeleteFileResult &result)
{
    ++(result.success ? summary_.succeeded : summary_.failed);
    resultText_ += QLatin1Char('\n') + result.message;
    if (!result.message.isEmpty())
        summary_.messages.append(result.message);
    const int done = summary_.succeeded + summary_.failed;
    emit progressed(done, total_);
    if (done == total_)
        finish();
}

void OriginalDeletion::finish()
{
    qDebug() << "删除完成 - 成功:" << summary_.succeeded << " 失败:" << summary_.failed;
    qDebug() << "删除失败的信息:" << resultText_;
    busy_ = false;
    const OriginalDeletionSummary summary = summary_;
    const QPointer<OriginalDeletion> alive(this); // boxes may be shown meanwhile
    emit finished(summary);
    if (alive)
        emit ended();
}

void OriginalDeletion::stop()
{
    if (!busy_)
        return;
    stopped_.raise();
    const int done = summary_.succeeded + summary_.failed;
    if (done < total_) {
        // The tasks answer, those that had not begun at once; the last answer ends it.
        QTimer::singleShot(stopPatienceMs, this, [this] {
            if (busy_)
                tellPoolIsSlow();
        });
        return;
    }
    planning_.abandon();
    call_.cancel();
    busy_ = false;
    emit ended();
}
