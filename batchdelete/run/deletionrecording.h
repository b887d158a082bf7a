#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "ledger/ledgerrecords.h"
#include "net/orderqueries.h"

#include <QHash>
#include <QString>
#include <QVector>

/// What a batch deletion tells the ledger: each file before it is announced, that the service
/// agreed, that it is gone, and that the service was told so. Remembers the rows of files that were
/// left, so that a retry goes on with them. Waits for nothing; lives on the interface thread.
class DeletionRecording
{
public:
    using Rows = QVector<ledger::DeletionId>;

    DeletionRecording() = default;
    ~DeletionRecording() { end(); }
    Q_DISABLE_COPY_MOVE(DeletionRecording)

    /// The run that rows are for; begun when there is none.
    ledger::RunId run(const orderqueries::Identity &identity);
    /// One row for each of \a files, 0 for those that are kept. For any thread: an order may have a
    /// million files.
    static Rows enter(ledger::RunId run, const BatchDeleteOrderInfo &order,
                      const QVector<BatchDeleteFileInfo> &files);
    /// The rows of all files of \a order, by their index.
    void setRows(const OrderIdentity &order, const Rows &rows);
    /// The rows of some of its files besides those that were left.
    void addRows(const OrderIdentity &order, const QVector<BatchDeleteFileInfo> &files,
                 const Rows &rows);
    /// The service has agreed to \a rows.
    static void announced(const Rows &rows);

    void deleted(const OrderIdentity &order, int index, const BatchDeleteFileInfo &file);
    void failed(const OrderIdentity &order, int index, const BatchDeleteFileInfo &file);
    /// The service was told that the file is gone; or, with the reason in \a file, was not.
    void reported(const OrderIdentity &order, int index, const BatchDeleteFileInfo &file);

    void end();

private:
    ledger::DeletionId rowOf(const OrderIdentity &order, int index,
                             const BatchDeleteFileInfo &file) const;

    ledger::RunId run_ = 0;
    OrderIdentity order_; ///< whose files rows_ are for
    Rows rows_;
    QHash<OrderIdentity, QHash<QString, ledger::DeletionId>> left_; ///< by their paths
};
