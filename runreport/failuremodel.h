#pragma once

#include "records/recordtable.h"
#include "runreport/runfailure.h"
#include "tasks/workprogress.h"

#include <QPair>
#include <QSet>

/// The failures of a window's run as they come and are mended; each file stands in it once.
class FailureModel : public RecordTable<RunFailure>
{
    Q_OBJECT

public:
    enum Column { OrderColumn, FileColumn, ReasonColumn, ColumnCount };

    explicit FailureModel(QObject *parent = nullptr);

    /// In the place of what is known of the file, or else behind the others.
    void put(const RunFailure &failure);
    /// The file has not failed, or not any more.
    void take(const OrderIdentity &order, const QString &key);
    void takeOrder(const OrderIdentity &order);
    void clear() { setFailures({}); }

    const QVector<RunFailure> &failures() const { return records_; }
    /// Of a window that does nothing.
    WorkProgress workAtRest() const;

signals:
    void countChanged(int failures);

private:
    using Key = QPair<OrderIdentity, QString>;

    void setFailures(const QVector<RunFailure> &failures);
    int rowOf(const OrderIdentity &order, const QString &key) const;

    QSet<Key> known_; ///< asked for every file of a run
};
