#pragma once

#include "ledger/ledgerdatabase.h"
#include "ledger/ledgerreader.h"
#include "ledger/ledgerwriter.h"

#include <QDeadlineTimer>
#include <QStringList>
#include <QThread>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

class QObject;

/// The ledger's thread: owns the database and carries out, in their order, what it is given.
/// Writing is gathered for a moment and goes into one transaction; what could not be written for
/// now is kept and written before anything later.
class LedgerKeeper : public QThread
{
public:
    using Write = std::function<bool(LedgerWriter &)>;
    using Question = std::function<void(const LedgerReader &)>;
    using Waiter = std::function<void(bool isWritten)>;

    /// How long writing waits for more of it, ms.
    static constexpr int gatherMs = 250;

    /// \a owner gets an event of type QEvent::User when there are notices.
    LedgerKeeper(const QString &folder, QObject *owner);
    /// Only after the thread has ended.
    ~LedgerKeeper() override = default;

    void put(Write write);
    /// Asked of what was written before; that is on the disk then, if it can be.
    void put(Question question);
    void put(Waiter waiter);

    /// See Ledger::askWhoElseWorksOn(). For a question, on the ledger's thread.
    QVector<ledger::Entry> underWayElsewhere(const LedgerReader &reader,
                                             const OrderIdentity &order);
    /// See Ledger::forgetBefore(). For a question, on the ledger's thread.
    void forgetBefore(qint64 beforeMs);

    /// Carries out what there is and ends the thread, in \a timeoutMs at most; false when it goes
    /// on. Nothing is sent to the owner any more.
    bool end(int timeoutMs);

    QStringList takeNotices();
    /// As far as the thread knows by now; before the file was opened it hopes. Any thread.
    bool canWrite() const { return canWrite_; }

private:
    struct Item
    {
        Write write;
        Question question;
        Waiter waiter;
    };

    void run() override;
    void put(Item item, bool isUrgent);
    bool take(std::deque<Item> &items);
    void carryOut(std::deque<Item> items);
    bool write();
    bool writeOnce();
    bool mend();
    bool mayTidy() const;
    void tidy();
    bool removeOldest(qint64 beforeMs, bool *isMore);
    void beginAnew();
    void tellOwner();

    const QString folder_;

    std::mutex mutex_; // guards what follows
    std::condition_variable came_;
    std::deque<Item> waiting_;
    bool isUrgent_ = false;
    bool isEnding_ = false;
    std::condition_variable ended_;
    bool hasEnded_ = false; ///< the thread touches nothing of this any more
    QStringList notices_;
    QObject *owner_;

    std::atomic<bool> canWrite_{true};

    // The thread's own.
    std::deque<Write> unwritten_;
    std::size_t refused_ = 0;     ///< of those, the one that the database refused
    QDeadlineTimer notBefore_;    ///< what could not be written is not tried again
    bool isToBeLookedAt_ = false; ///< a program that had it open was broken off
    qint64 tidiedBeforeMs_ = 0;   ///< what is older goes; 0 when there is no more of it
    QDeadlineTimer nextTidying_;
    LedgerDatabase database_;
    LedgerWriter writer_;
};
