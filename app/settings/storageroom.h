#pragma once

#include "tasks/latest.h"

#include <QObject>
#include <QString>

/// How much room the ledger and the log take, and giving it back. Interface thread; the disk is
/// looked at on its pool.
class StorageRoom : public QObject
{
    Q_OBJECT

public:
    /// Finished records as old as this may go; what still has to be done never does.
    static constexpr int daysKept = 180;

    StorageRoom(const QString &ledgerFolder, const QString &logFolder, QObject *parent = nullptr);

    const QString &ledgerFolder() const { return ledgerFolder_; }
    const QString &logFolder() const { return logFolder_; }

    /// measured() follows.
    void measure();
    /// measured() follows when they are gone; the file that is being written stays.
    void clearLog();
    /// Why the ledger may not be cleared now; empty when it may.
    QString obstacleToClearing() const;
    /// measured() follows when it is done, which takes a while for many records.
    void clearLedger();

signals:
    /// Bytes; -1 where nothing is kept.
    void measured(qint64 ledgerBytes, qint64 logBytes);

private:
    const QString ledgerFolder_;
    const QString logFolder_;
    Latest looking_;
};
