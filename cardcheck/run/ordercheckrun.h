#pragma once

#include "cardcheck/rules/orderfilelist.h"
#include "cardcheck/run/servicelists.h"
#include "files/transferprogress.h"
#include "net/branchsession.h"
#include "tasks/latest.h"
#include "tasks/stopflag.h"
#include "tasks/workerpool.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

/// Looks at one order: in its folder, in the ledger, and at the service in the name of the order's
/// own branch; then reads what the ledger has a hash of, past the system's memory, on two threads
/// of its own. Interface thread.
class OrderCheckRun : public QObject
{
    Q_OBJECT

public:
    explicit OrderCheckRun(QObject *parent = nullptr);
    ~OrderCheckRun() override;

    /// An earlier check is abandoned. \a folder in wire form; the order's number as ServiceLists
    /// takes it.
    void start(const ledger::OrderKey &order, const QString &folder);
    void cancel();
    /// Of the reading.
    TransferProgress progress() const;

signals:
    /// The files are known, and are being read.
    void readingBegun();
    void finished(const orderfilelist::Comparison &comparison);

private:
    void ended();
    void read();
    void readNext();
    void finish();
    void onRead(int index, orderfilelist::Content content);

    BranchSession branch_;
    ServiceLists lists_;
    ledger::OrderKey order_;
    QString folder_;
    QString problem_;
    QVector<places::FolderFile> files_;
    QVector<ledger::Copy> copies_;
    Latest round_;
    Latest::Token current_ = round_.next();
    int awaited_ = 0; ///< folder, ledger and service

    orderfilelist::Comparison comparison_;
    QVector<int> toRead_; ///< not begun
    int readings_ = 0;    ///< under way
    TransferProgress progress_;
    std::shared_ptr<std::atomic<qint64>> bytesRead_;
    StopFlag stop_;
    std::unique_ptr<WorkerPool> pool_;
};
