#pragma once

#include "marks/rules/choice.h"
#include "marks/rules/marklines.h"
#include "tasks/stopflag.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <memory>

/// The marks of the files that are chosen in one window: looks at sources and target folders, asks
/// the ledger, reads what only the content decides, and samples when the photos were taken. Each
/// order's newest choice counts; what was known of a file stays until more is known.
///
/// Lives on the interface thread and never blocks: disks are looked at on the disk pool, a file at
/// a time where files are read, so that others get their turns. A share that hangs delays the marks
/// and nothing else.
class ChoiceMarks : public QObject
{
    Q_OBJECT

public:
    explicit ChoiceMarks(QObject *parent = nullptr);
    ~ChoiceMarks() override;

    /// These are the choices now, of all orders: looks at those that are new, other than before, or
    /// no longer looked at, and forgets all other orders.
    void sync(const QVector<marks::Choice> &choices);
    /// Nothing is looked at any more; what is known stays. For when an import begins: it needs the
    /// disks.
    void stop();

    /// What is known by now, in the order in which the orders were first chosen for.
    QVector<marks::OrderLook> looks() const;
    /// Of one order, by source.
    QHash<QString, marks::Mark> marksOf(const OrderIdentity &order) const;
    /// Whether anything is still being looked at.
    bool isLooking() const;

signals:
    /// More, or other things, are known of the order.
    void changed(const OrderIdentity &order);

private:
    struct Facts;
    struct Look;
    using LookPtr = std::shared_ptr<Look>;

    void look(const marks::Choice &choice);
    static LookPtr begun(const marks::Choice &choice, const LookPtr &before);
    void forget(const OrderIdentity &order);
    void onFacts(const LookPtr &look, const Facts &arrived);
    static void want(Look *look, int index);
    void readNext(const LookPtr &look);
    void onRead(const LookPtr &look, const QString &path, const QByteArray &hash);
    void sampleCaptures(const LookPtr &look);
    void tell(const OrderIdentity &order);

    QHash<OrderIdentity, LookPtr> looks_;
    QVector<OrderIdentity> sequence_;
    QVector<OrderIdentity> untold_; ///< changed since changed() was last emitted for them
    QTimer tellTimer_; ///< many files are judged a second; tables are told now and then
};
