#include "ledger/ledger.h"

#include "app/context/logging.h"
#include "ledger/ledgerkeeper.h"

#include <QDateTime>
#include <QEvent>
#include <QSemaphore>
#include <QStandardPaths>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace {

/// How long the end of the program waits for what is to be written, ms.
constexpr int endMs = 5000;

std::atomic<Ledger *> currentLedger{nullptr};

/// Ids that no row has, each once.
qint64 newIds(int count)
{
    static std::atomic<qint64> next{-1};
    return next.fetch_sub(count);
}

QVector<qint64> idsFrom(qint64 first, int count)
{
    QVector<qint64> ids(count);
    for (qint64 &id : ids)
        id = first--;
    return ids;
}

qint64 now()
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace

Ledger::Ledger(const QString &folder, QObject *parent) : QObject(parent)
{
    if (folder.isEmpty())
        return;
    keeper_ = new LedgerKeeper(folder, this);
    keeper_->start();
}

bool Ledger::isKept() const
{
    return keeper_ && keeper_->canWrite();
}

Ledger::~Ledger()
{
    Ledger *self = this;
    currentLedger.compare_exchange_strong(self, nullptr);
    if (!keeper_)
        return;
    if (keeper_->end(endMs))
        delete keeper_;
    else
        qCWarning(lcTessavo) << "ledger: the disk does not answer";
}

Ledger &Ledger::current()
{
    static Ledger none{QString()};
    Ledger *one = currentLedger.load();
    return one ? *one : none;
}

void Ledger::makeCurrent()
{
    currentLedger.store(this);
}

QString Ledger::standardFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
}

template <typename Write> void Ledger::write(Write write)
{
    if (keeper_)
        keeper_->put(LedgerKeeper::Write(std::move(write)));
}

ledger::RunId Ledger::beginRun(const ledger::NewRun &run)
{
    const ledger::RunId id = newIds(1);
    write([=, at = now()](LedgerWriter &writer) { return writer.beginRun(id, run, at); });
    return id;
}

QVector<ledger::CopyId> Ledger::beginCopies(ledger::RunId run, const ledger::OrderKey &order,
                                            const QVector<ledger::NewCopy> &copies)
{
    const ledger::CopyId first = newIds(copies.size());
    write([=, at = now()](LedgerWriter &writer) {
        return writer.beginCopies(first, run, order, copies, at);
    });
    return idsFrom(first, copies.size());
}

void Ledger::finishCopy(ledger::CopyId copy, const ledger::CopyResult &result)
{
    write([=, at = now()](LedgerWriter &writer) { return writer.finishCopy(copy, result, at); });
}

void Ledger::failCopy(ledger::CopyId copy, const QString &reason)
{
    write([=](LedgerWriter &writer) { return writer.failCopy(copy, reason); });
}

void Ledger::proveCopy(ledger::CopyId copy, const ledger::CopyResult &result)
{
    write([=](LedgerWriter &writer) { return writer.proveCopy(copy, result); });
}

void Ledger::registerCopies(const QVector<ledger::CopyId> &copies)
{
    write([=, at = now()](LedgerWriter &writer) { return writer.registerCopies(copies, at); });
}

void Ledger::refuseCopies(const QVector<ledger::CopyId> &copies, const QString &reason)
{
    write([=](LedgerWriter &writer) { return writer.refuseCopies(copies, reason); });
}

void Ledger::dismissUnregistered(const ledger::Desk &desk, const OrderIdentity &order)
{
    write([=](LedgerWriter &writer) { return writer.dismissUnregistered(desk, order); });
}

QVector<ledger::DeletionId> Ledger::beginDeletions(ledger::RunId run, const ledger::OrderKey &order,
                                                   const QVector<ledger::NewDeletion> &deletions)
{
    const ledger::DeletionId first = newIds(deletions.size());
    write([=, at = now()](LedgerWriter &writer) {
        return writer.beginDeletions(first, run, order, deletions, at);
    });
    return idsFrom(first, deletions.size());
}

void Ledger::announceDeletions(const QVector<ledger::DeletionId> &deletions)
{
    write(
        [=, at = now()](LedgerWriter &writer) { return writer.announceDeletions(deletions, at); });
}

void Ledger::finishDeletion(ledger::DeletionId deletion)
{
    write([=, at = now()](LedgerWriter &writer) { return writer.finishDeletion(deletion, at); });
}

void Ledger::failDeletion(ledger::DeletionId deletion, const QString &reason)
{
    write([=](LedgerWriter &writer) { return writer.failDeletion(deletion, reason); });
}

void Ledger::reportDeletions(const QVector<ledger::DeletionId> &deletions)
{
    write([=, at = now()](LedgerWriter &writer) { return writer.reportDeletions(deletions, at); });
}

void Ledger::dismissDeletions(const QVector<ledger::DeletionId> &deletions)
{
    write([=](LedgerWriter &writer) { return writer.dismissDeletions(deletions); });
}

void Ledger::endRun(ledger::RunId run)
{
    write([=, at = now()](LedgerWriter &writer) { return writer.endRun(run, at); });
}

void Ledger::savePending(const ledger::Pending &item)
{
    write([=, at = now()](LedgerWriter &writer) { return writer.savePending(item, at); });
}

void Ledger::removePending(ledger::PendingKind kind, const ledger::Desk &desk,
                           const OrderIdentity &order)
{
    write([=](LedgerWriter &writer) { return writer.removePending(kind, desk, order); });
}

void Ledger::askWhoElseWorksOn(const OrderIdentity &order, QObject *context,
                               std::function<void(const QVector<ledger::Entry> &others)> done)
{
    const auto others = std::make_shared<QVector<ledger::Entry>>();
    const auto *answer =
        new background::Answer(context, [others, done = std::move(done)] { done(*others); });
    const auto bell = answer->bell();
    if (!keeper_) {
        bell->ring();
        return;
    }
    keeper_->put(
        LedgerKeeper::Question([keeper = keeper_, order, others, bell](const LedgerReader &reader) {
            *others = keeper->underWayElsewhere(reader, order);
            bell->ring();
        }));
}

void Ledger::forgetBefore(qint64 beforeMs, QObject *context, std::function<void()> done)
{
    const auto *answer = new background::Answer(context, std::move(done));
    const auto bell = answer->bell();
    if (!keeper_) {
        bell->ring();
        return;
    }
    keeper_->put(LedgerKeeper::Question([keeper = keeper_, beforeMs, bell](const LedgerReader &) {
        keeper->forgetBefore(beforeMs);
        bell->ring();
    }));
}

void Ledger::whenWritten(QObject *context, std::function<void(bool)> done)
{
    const auto result = std::make_shared<bool>(false);
    const auto *answer =
        new background::Answer(context, [result, done = std::move(done)] { done(*result); });
    waitFor([result, bell = answer->bell()](bool isWritten) {
        *result = isWritten;
        bell->ring();
    });
}

bool Ledger::waitUntilWritten(int timeoutMs)
{
    struct Wait
    {
        std::mutex mutex;
        std::condition_variable done;
        std::optional<bool> result;
    };
    const auto wait = std::make_shared<Wait>();
    waitFor([wait](bool isWritten) {
        const std::lock_guard<std::mutex> lock(wait->mutex);
        wait->result = isWritten;
        wait->done.notify_all();
    });
    std::unique_lock<std::mutex> lock(wait->mutex);
    wait->done.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                        [&wait] { return wait->result.has_value(); });
    return wait->result.value_or(false);
}

void Ledger::waitFor(std::function<void(bool)> waiter)
{
    if (keeper_)
        keeper_->put(LedgerKeeper::Waiter(std::move(waiter)));
    else
        waiter(false);
}

void Ledger::put(std::function<void(const LedgerReader &)> question)
{
    if (keeper_)
        keeper_->put(LedgerKeeper::Question(std::move(question)));
    else
        question(LedgerReader(nullptr));
}

void Ledger::putAndWait(const std::function<void(const LedgerReader &)> &question)
{
    std::mutex mutex;
    std::condition_variable answered;
    bool isAnswered = false;
    put([&](const LedgerReader &reader) {
        question(reader);
        const std::lock_guard<std::mutex> lock(mutex);
        isAnswered = true;
        answered.notify_all();
    });
    std::unique_lock<std::mutex> lock(mutex);
    answered.wait(lock, [&isAnswered] { return isAnswered; });
}

QStringList Ledger::takeNotices()
{
    return keeper_ ? keeper_->takeNotices() : QStringList();
}

bool Ledger::event(QEvent *event)
{
    if (event->type() != QEvent::User)
        return QObject::event(event);
    emit noticed();
    return true;
}
