#pragma once

#include "distribution/files/fileoutcome.h"
#include "distribution/proof/orderproof.h"
#include "distribution/rules/designfilesplittypes.h"
#include "distribution/rules/orderdata.h"
#include "ledger/ledgerrecords.h"
#include "net/orderqueries.h"

#include <QString>
#include <QVector>

/// What a distribution tells the ledger: each file, once it is known what became of it, and where
/// it ended. Waits for nothing; lives on the interface thread.
class DistributionRecording
{
public:
    DistributionRecording() = default;
    ~DistributionRecording() { end(); }
    Q_DISABLE_COPY_MOVE(DistributionRecording)

    void begin(DesignFileSplitTypes type, const orderqueries::Identity &identity);
    /// \a reason: of those that were not written.
    void add(const OrderData &order, const QVector<FileOutcome> &files, const QString &reason);
    void end();

private:
    ledger::RunId run_ = 0;
};

namespace distributionrecords {

ledger::Work workOf(DesignFileSplitTypes type);
/// All cards'.
const QVector<ledger::Work> &works();
/// What the ledger's \a copies say of files that were written; of others it says nothing.
QVector<EarlierFile> earlierFiles(const QVector<ledger::Copy> &copies);

} // namespace distributionrecords
