#pragma once

#include "ledger/ledgerreader.h"
#include "ledger/ledgerrecords.h"
#include "tasks/background.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

class LedgerKeeper;

/// The record of what was copied where, with its proof, and of what is still to be done: a database
/// of this user on this machine, which belongs to one thread of its own.
///
/// Writing calls take values, return at once and may be made from any thread; they are carried out
/// in the order in which they are made, many in one transaction. What is to be on the disk before
/// one goes on is waited for with whenWritten() or waitUntilWritten(): a file is copied only when
/// its row is begun. A row says less than the disk, never more: finishCopy() comes after the file
/// is in its place, registerCopies() after the service's reply.
///
///     Ledger &ledger = Ledger::current();
///     const ledger::RunId run = ledger.beginRun({desk, who});
///     const QVector<ledger::CopyId> ids = ledger.beginCopies(run, order, copies);
///     ledger.whenWritten(this, [=](bool) { startCopying(ids); });   // or, on a worker:
///     ledger.waitUntilWritten();
///     ... ledger.finishCopy(id, result) or failCopy(id, reason), registerCopies(ids), endRun(run)
///
/// The program works without it: switched off, in a folder that cannot be written or on a full disk
/// it takes everything, keeps nothing and answers nothing. What is wrong is told once.
class Ledger : public QObject
{
    Q_OBJECT

public:
    static constexpr int daysKept = 400;
    /// How long a copy may be held up for its row.
    static constexpr int patienceMs = 10000;

    /// Keeps the database ledger.db in \a folder, which is made; an empty one means that nothing is
    /// kept. Opens it on the ledger's thread, so that this returns at once.
    explicit Ledger(const QString &folder, QObject *parent = nullptr);
    /// Writes what was asked for, for some seconds at most.
    ~Ledger() override;

    /// The one that was made current last and lives; otherwise one that keeps nothing. Any thread.
    static Ledger &current();
    /// The program makes its own current at start-up, a test one in a folder that goes.
    void makeCurrent();

    /// Where the program keeps it: the user's local application data.
    static QString standardFolder();

    /// Whether what is said now can be asked for after the program has ended: not when it is
    /// switched off, and not while its file cannot be written. Any thread.
    bool isKept() const;

    // Writing. What is said of an id that is 0 or not known is ignored.

    /// Never 0, also when nothing is kept.
    ledger::RunId beginRun(const ledger::NewRun &run);
    /// One id for each copy, in their order. May be called several times for one order.
    QVector<ledger::CopyId> beginCopies(ledger::RunId run, const ledger::OrderKey &order,
                                        const QVector<ledger::NewCopy> &copies);
    /// The target stands in its place with the whole content.
    void finishCopy(ledger::CopyId copy, const ledger::CopyResult &result);
    void failCopy(ledger::CopyId copy, const QString &reason);
    /// A card check or a second reading has proved more, or less, of a finished copy.
    void proveCopy(ledger::CopyId copy, const ledger::CopyResult &result);
    /// The service has taken them.
    void registerCopies(const QVector<ledger::CopyId> &copies);
    /// The service did not take them, for that reason; they are still awaited.
    void refuseCopies(const QVector<ledger::CopyId> &copies, const QString &reason);
    /// Those of \a order that are awaited at \a desk are no more, on the user's word.
    void dismissUnregistered(const ledger::Desk &desk, const OrderIdentity &order);

    QVector<ledger::DeletionId> beginDeletions(ledger::RunId run, const ledger::OrderKey &order,
                                               const QVector<ledger::NewDeletion> &deletions);
    /// The service knows of them, or has deleted the photos.
    void announceDeletions(const QVector<ledger::DeletionId> &deletions);
    /// The file is gone from the disk. A photo that the service deleted itself (PhotoDeletion) is
    /// not to be reported, and done with.
    void finishDeletion(ledger::DeletionId deletion);
    void failDeletion(ledger::DeletionId deletion, const QString &reason);
    /// The service was told that the files are gone.
    void reportDeletions(const QVector<ledger::DeletionId> &deletions);
    /// Nothing more is to be done about them, on the user's word.
    void dismissDeletions(const QVector<ledger::DeletionId> &deletions);

    /// Nothing more comes for this run, whether it went well or was stopped, except registrations.
    void endRun(ledger::RunId run);

    /// Replaces an item of the same kind, desk and order; one without files is removed.
    void savePending(const ledger::Pending &item);
    void removePending(ledger::PendingKind kind, const ledger::Desk &desk,
                       const OrderIdentity &order);

    /// Forgets what is finished and was begun before \a beforeMs (since 1970), gives the room back
    /// to the disk and calls \a done on the thread of \a context, which is this one; nothing else
    /// is written or read meanwhile. What still has to be done is never forgotten.
    void forgetBefore(qint64 beforeMs, QObject *context, std::function<void()> done);

    // Waiting.

    /// Calls \a done on the thread of \a context (call it there) when all that was asked for before
    /// is on the disk: with false when it could not be written for now, or is not kept.
    void whenWritten(QObject *context, std::function<void(bool isWritten)> done);
    /// The same, waiting; not for the interface thread, except at its end. False after \a
    /// timeoutMs.
    bool waitUntilWritten(int timeoutMs = patienceMs);

    // Asking.

    /// Runs \a question, which takes a const LedgerReader & and gives a value, on the ledger's
    /// thread, and \a done with its result on that of \a context, where this is called. When
    /// \a context dies first, \a done never runs. What was written before is seen.
    template <typename Question, typename Done>
    void ask(QObject *context, Question question, Done done)
    {
        using Value = std::decay_t<std::invoke_result_t<Question &, const LedgerReader &>>;
        const auto value = std::make_shared<std::optional<Value>>();
        auto *answer = new background::Answer(
            context, [value, done = std::move(done)]() mutable { done(std::move(**value)); });
        put([question = std::move(question), value,
             bell = answer->bell()](const LedgerReader &reader) mutable {
            value->emplace(question(reader));
            bell->ring();
        });
    }

    /// The same, waiting for the result: for worker threads.
    template <typename Question> auto answer(Question question)
    {
        using Value = std::decay_t<std::invoke_result_t<Question &, const LedgerReader &>>;
        std::optional<Value> value;
        putAndWait(
            [&question, &value](const LedgerReader &reader) { value.emplace(question(reader)); });
        return std::move(*value);
    }

    /// What other programs of this user are doing with \a order at this moment, for \a done on the
    /// thread of \a context, which is this one: nothing of those that have ended in whatever way.
    void askWhoElseWorksOn(const OrderIdentity &order, QObject *context,
                           std::function<void(const QVector<ledger::Entry> &others)> done);

    /// What the user is to be told that was not told yet, each once; empties the list.
    QStringList takeNotices();

signals:
    /// There are notices to take.
    void noticed();

protected:
    bool event(QEvent *event) override;

private:
    template <typename Write> void write(Write write);
    void put(std::function<void(const LedgerReader &)> question);
    void putAndWait(const std::function<void(const LedgerReader &)> &question);
    void waitFor(std::function<void(bool isWritten)> waiter);

    LedgerKeeper *keeper_ = nullptr; ///< owned; null when nothing is kept
};
