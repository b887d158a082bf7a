#pragma once

#include "ledger/ledgerrecords.h"
#include "pending/pendinglines.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>
#include <QVector>

#include <functional>
#include <optional>

/// The files that users chose for orders and that are not imported yet. Those that the tool's table
/// shows are the table's; the others wait here, through searches, for as long as the window lives,
/// and in the ledger beyond that.
///
/// A change of what is chosen is in the ledger within a moment; how far an import has got is
/// written rarely, since load() leaves out what the ledger knows to be copied by then. Interface
/// thread.
class PendingChoices : public QObject
{
    Q_OBJECT

public:
    struct Choice
    {
        ledger::OrderKey order;
        QVector<ledger::PendingFile> files;
    };
    /// What the table shows of an order: its files that are not imported. Nothing when the order is
    /// not listed.
    using Shown = std::function<std::optional<Choice>(const OrderIdentity &order)>;

    PendingChoices(ledger::Work work, Shown shown, QObject *parent = nullptr);
    ~PendingChoices() override;

    /// Asks the ledger for what earlier windows left, of all branches of the account.
    void load();

    /// The files of a listed order are others, or have other names.
    void noteChoice(const OrderIdentity &order) { note(order, soonMs); }
    /// The same where an import went on.
    void noteProgress(const OrderIdentity &order) { note(order, rarelyMs); }
    /// To be called before the table shows other orders: what it shows now waits from then on.
    void leaveTable();
    /// Writes at once what is not written yet.
    void flush();

    /// What is not shown, of the orders of \a branch.
    QVector<Choice> waiting(const QString &branch) const;
    /// The same with what is shown.
    QVector<Choice> all(const QString &branch) const;
    /// The branches of which anything waits.
    QStringList branches() const;
    /// What waits, for each branch.
    QVector<pendinglines::Count> counts() const;
    /// What waits of \a branch is not wanted any more.
    void forget(const QString &branch);

signals:
    /// What waits is something else now.
    void changed();

private:
    struct Kept
    {
        ledger::OrderKey order;
        QVector<ledger::PendingFile> shown;
        QVector<ledger::PendingFile> waiting;
    };
    static constexpr int soonMs = 200;
    static constexpr int rarelyMs = 10000;

    void note(const OrderIdentity &order, int withinMs);
    void update(const OrderIdentity &order);
    void save(const OrderIdentity &order);
    void take(const QVector<ledger::Pending> &items);

    ledger::Work work_;
    Shown shown_;
    QHash<OrderIdentity, Kept> kept_;
    QSet<OrderIdentity> unwritten_;
    QTimer writing_;
};
