#pragma once

#include "ledger/ledgerrecords.h"
#include "photoimport/rules/photoimportrecords.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QVector>

/// What the photo import tells the ledger: of each original and video before it is copied, and of
/// what the service took. (What became of a copy the worker itself tells. Size variants are made
/// anew when they are missing, and not told of.) An import goes on without the ledger, too.
///
/// Lives on the interface thread and waits for nothing there.
class PhotoRecording : public QObject
{
    Q_OBJECT

public:
    explicit PhotoRecording(QObject *parent = nullptr);
    ~PhotoRecording() override;

    /// Photos are imported from now on, in the name of \a identity.
    void start(const orderqueries::Identity &identity, PhotoMode mode);
    ledger::RunId run() const { return run_; }
    PhotoMode mode() const { return mode_; }

    /// Notes that the jobs of \a order from \a from on, \a count at most, are going to be done.
    /// Returns an id for each of them, 0 for one that is not told of. Blocks; for worker threads.
    static QVector<ledger::CopyId> begin(ledger::RunId run, PhotoMode mode, const OrderInfo &order,
                                         int from, int count);
    /// \a copies did not come about.
    static void withdraw(const QVector<ledger::CopyId> &copies);

    /// The service took the file at \a target (Windows form), of whichever run.
    void registered(const QString &target);

    /// Nothing more is copied.
    void end();

private:
    void tellRegistered();

    ledger::RunId run_ = 0; ///< 0 while nothing is copied
    PhotoMode mode_ = PhotoMode::Photos;
    QSet<QString> registered_; ///< not told yet
    QTimer gathering_;
};
