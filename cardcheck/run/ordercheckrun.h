#pragma once

#include "cardcheck/rules/orderfilelist.h"
#include "cardcheck/run/servicelists.h"
#include "net/branchsession.h"
#include "tasks/latest.h"

#include <QObject>
#include <QString>

/// Looks at one order: in its folder, in the ledger, and at the service in the name of the order's
/// own branch. Interface thread.
class OrderCheckRun : public QObject
{
    Q_OBJECT

public:
    explicit OrderCheckRun(QObject *parent = nullptr);

    /// An earlier check is abandoned. \a folder in wire form; the order's number as ServiceLists
    /// takes it.
    void start(const ledger::OrderKey &order, const QString &folder);
    void cancel();

signals:
    void finished(const orderfilelist::Comparison &comparison);

private:
    void ended();

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
};
