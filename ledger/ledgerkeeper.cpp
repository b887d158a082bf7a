#include "ledger/ledgerkeeper.h"

#include "app/context/logging.h"
#include "ledger/ledger.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEvent>

#include <algorithm>
#include <chrono>

namespace {

/// What is kept for a disk that does not take it; after that it is not worth the memory.
constexpr std::size_t mostUnwritten = 200000;

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
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isEnding_ = true;
        owner_ = nullptr;
    }
    came_.notify_all();
    return wait(QDeadlineTimer(timeoutMs));
}

QStringList LedgerKeeper::takeNotices()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(notices_, {});
}

void LedgerKeeper::run()
{
    database_.open();
    tidiedBeforeMs_ = QDateTime::currentMSecsSinceEpoch() - qint64(Ledger::daysKept) * 86400000;
    tellOwner();
    std::deque<Item> items;
    while (take(items)) {
        if (items.empty())
            tidy();
        carryOut(std::exchange(items, {}));
        tellOwner();
    }
    database_.close();
}

/// Waits until there is something to do. Nothing in \a items means that there is time to tidy.
/// False at the end.
bool LedgerKeeper::take(std::deque<Item> &items)
{
    std::unique_lock<std::mutex> lock(mutex_);
    const bool mayTidy = tidiedBeforeMs_ != 0 && database_.state() == LedgerDatabase::State::Open;
    const auto isThere = [this] { return !waiting_.empty() || isEnding_; };
    if (!mayTidy)
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
    if (database_.state() != LedgerDatabase::State::Open)
        unwritten_.clear();
    if (unwritten_.empty())
        return database_.state() == LedgerDatabase::State::Open;
    if (writeOnce())
        return true;
    if (database_.problem() == LedgerDatabase::Problem::Damaged &&
        database_.beginAnew() == LedgerDatabase::State::Open) {
        writer_.forgetRows();
        if (writeOnce())
            return true;
    }
    giveUp();
    return false;
}

bool LedgerKeeper::writeOnce()
{
    if (!database_.begin())
        return false;
    const bool isDone = std::all_of(unwritten_.cbegin(), unwritten_.cend(),
                                    [this](const Write &write) { return write(writer_); });
    if (isDone && database_.commit()) {
        unwritten_.clear();
        return true;
    }
    database_.rollback();
    writer_.forgetRows();
    return false;
}

/// For now, or for ever where trying again would not mend it.
void LedgerKeeper::giveUp()
{
    using Problem = LedgerDatabase::Problem;
    if (database_.problem() == Problem::Full) {
        database_.addNotice(QStringLiteral("导入记录暂时无法写入（%1），导入不受影响")
                                .arg(database_.problemText()));
    } else if (database_.problem() != Problem::Busy) {
        qCWarning(lcTessavo) << "ledger: dropped" << unwritten_.size() << "changes";
        unwritten_.clear();
    }
    if (unwritten_.size() > mostUnwritten)
        unwritten_.clear();
}

void LedgerKeeper::tidy()
{
    bool isMore = false;
    const bool isDone =
        database_.begin() && writer_.removeOldest(tidiedBeforeMs_, &isMore) && database_.commit();
    if (!isDone)
        database_.rollback();
    if (!isDone || !isMore)
        tidiedBeforeMs_ = 0;
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
