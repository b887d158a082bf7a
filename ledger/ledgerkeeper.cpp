#include "ledger/ledgerkeeper.h"

#include "app/context/logging.h"
#include "ledger/ledger.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEvent>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

/// What is kept for a disk that does not take it; after that it is not worth the memory.
constexpr std::size_t mostUnwritten = 200000;
constexpr int retryMs = 2000;

} // namespace

LedgerKeeper::LedgerKeeper(const QString &folder, QObject *owner)
    : folder_(folder), owner_(owner), database_(folder), writer_(&database_)
{
    setObjectName(QStringLiteral("ledger"));
}

void LedgerKeeper::put(Write write)
{
    put({std::move(write), {}, {}}, false);
}

void LedgerKeeper::put(Question question)
{
    put({{}, std::move(question), {}}, true);
}

void LedgerKeeper::put(Waiter waiter)
{
    put({{}, {}, std::move(waiter)}, true);
}

void LedgerKeeper::put(Item item, bool isUrgent)
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        waiting_.push_back(std::move(item));
        isUrgent_ = isUrgent_ || isUrgent;
    }
    came_.notify_all();
}

bool LedgerKeeper::end(int timeoutMs)
{
    std::unique_lock<std::mutex> lock(mutex_);
    isEnding_ = true;
    owner_ = nullptr;
    came_.notify_all();
    if (!ended_.wait_for(lock, std::chrono::milliseconds(timeoutMs), [this] { return hasEnded_; }))
        return false;
    lock.unlock();
    return wait();
}

QStringList LedgerKeeper::takeNotices()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(notices_, {});
}

void LedgerKeeper::run()
{
    database_.open();
    if (database_.state() == LedgerDatabase::State::Open) {
        isToBeLookedAt_ = database_.wasBrokenOff();
        // Neither a clock that is ahead now nor one that was ahead makes rows old.
        const QVariant newest = database_.value(QStringLiteral("SELECT max(begun) FROM entry"));
        tidiedBeforeMs_ = std::min(QDateTime::currentMSecsSinceEpoch(), newest.toLongLong()) -
                          qint64(Ledger::daysKept) * 86400000;
    }
    canWrite_ = database_.state() == LedgerDatabase::State::Open;
    tellOwner();
    std::deque<Item> items;
    while (take(items)) {
        carryOut(std::exchange(items, {}));
        if (mayTidy() && nextTidying_.hasExpired()) {
            tidy();
            nextTidying_.setRemainingTime(gatherMs);
        }
        tellOwner();
    }
    database_.close();
    unwritten_.clear();
    const std::lock_guard<std::mutex> lock(mutex_);
    hasEnded_ = true;
    ended_.notify_all();
}

bool LedgerKeeper::mayTidy() const
{
    return tidiedBeforeMs_ > 0 && database_.state() == LedgerDatabase::State::Open;
}

/// Waits until there is something to do, or time to tidy. False at the end.
bool LedgerKeeper::take(std::deque<Item> &items)
{
    std::unique_lock<std::mutex> lock(mutex_);
    const auto isThere = [this] { return !waiting_.empty() || isEnding_; };
    if (!mayTidy())
        came_.wait(lock, isThere);
    else if (!came_.wait_for(lock, std::chrono::milliseconds(gatherMs), isThere))
        return true;
    if (!isEnding_ && !isUrgent_) {
        came_.wait_for(lock, std::chrono::milliseconds(gatherMs),
                       [this] { return isUrgent_ || isEnding_; });
    }
    items.swap(waiting_);
    isUrgent_ = false;
    return !items.empty() || !isEnding_;
}

void LedgerKeeper::carryOut(std::deque<Item> items)
{
    for (Item &item : items) {
        if (item.write) {
            unwritten_.push_back(std::move(item.write));
            continue;
        }
        const bool isWritten = write();
        tellOwner();
        if (item.waiter)
            item.waiter(isWritten);
        if (item.question) {
            const QSqlDatabase connection = database_.connection();
            item.question(LedgerReader(&connection));
        }
    }
    write();
}

/// All that was to be written, in one transaction. What is tried again goes before what comes.
bool LedgerKeeper::write()
{
    const bool isOpen = database_.state() == LedgerDatabase::State::Open;
    if (!isOpen)
        unwritten_.clear();
    if (unwritten_.empty())
        return isOpen;
    if (!notBefore_.hasExpired())
        return false;
    while (!unwritten_.empty() && !writeOnce()) {
        if (!mend()) {
            notBefore_.setRemainingTime(retryMs);
            canWrite_ = false;
            return false;
        }
    }
    canWrite_ = true;
    return true;
}

bool LedgerKeeper::writeOnce()
{
    refused_ = unwritten_.size();
    bool isDone = database_.begin();
    for (std::size_t number = 0; isDone && number < unwritten_.size(); ++number) {
        isDone = unwritten_[number](writer_);
        if (!isDone)
            refused_ = number;
    }
    if (isDone && database_.commit()) {
        unwritten_.clear();
        return true;
    }
    database_.rollback();
    writer_.forgetRows();
    return false;
}

/// Does something about what stood in the way of writing; false when only time can.
bool LedgerKeeper::mend()
{
    using Problem = LedgerDatabase::Problem;
    if (unwritten_.size() > mostUnwritten)
        unwritten_.clear();
    switch (database_.problem()) {
    case Problem::Damaged:
        beginAnew();
        return database_.state() == LedgerDatabase::State::Open;
    case Problem::Full:
        database_.addNotice(QStringLiteral("导入记录暂时无法写入（%1），导入不受影响")
                                .arg(database_.problemText()));
        return false;
    case Problem::Busy:
        return false;
    case Problem::None:
    case Problem::Other:
        break;
    }
    // One change is not to hold up all others.
    if (refused_ < unwritten_.size())
        unwritten_.erase(unwritten_.begin() + std::ptrdiff_t(refused_));
    else
        unwritten_.clear();
    return true;
}

void LedgerKeeper::beginAnew()
{
    database_.beginAnew();
    writer_ = LedgerWriter(&database_);
}

/// One short step at a time, between what is asked for.
void LedgerKeeper::tidy()
{
    if (std::exchange(isToBeLookedAt_, false)) {
        if (!database_.isWhole())
            beginAnew();
        return;
    }
    bool isMore = false;
    if (!removeOldest(tidiedBeforeMs_, &isMore) || !isMore)
        tidiedBeforeMs_ = 0;
}

bool LedgerKeeper::removeOldest(qint64 beforeMs, bool *isMore)
{
    const bool isDone =
        database_.begin() && writer_.removeOldest(beforeMs, isMore) && database_.commit();
    if (!isDone)
        database_.rollback();
    return isDone;
}

QVector<ledger::Entry> LedgerKeeper::underWayElsewhere(const LedgerReader &reader,
                                                       const OrderIdentity &order)
{
    if (database_.state() == LedgerDatabase::State::Open && database_.begin()) {
        database_.endLostSessions();
        if (!database_.commit())
            database_.rollback();
    }
    return reader.underWayElsewhere(order, database_.session());
}

void LedgerKeeper::forgetBefore(qint64 beforeMs)
{
    bool isMore = database_.state() == LedgerDatabase::State::Open;
    while (isMore && removeOldest(beforeMs, &isMore)) {
    }
    writer_.forgetRows();
    if (database_.state() == LedgerDatabase::State::Open)
        database_.run(QStringLiteral("VACUUM"));
}

void LedgerKeeper::tellOwner()
{
    const QStringList notices = database_.takeNotices();
    if (notices.isEmpty())
        return;
    const std::lock_guard<std::mutex> lock(mutex_);
    notices_ += notices;
    if (owner_)
        QCoreApplication::postEvent(owner_, new QEvent(QEvent::User));
}
