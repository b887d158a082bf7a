#pragma once

#include "fileimport/rules/importrecords.h"
#include "ledger/ledgerrecords.h"

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QVector>

#include <functional>

/// What an import tells the ledger: of each file before it is copied, and of what the service took.
/// (What became of a copy the task itself tells.) An import goes on without the ledger, too.
///
/// Lives on the interface thread and waits for nothing there.
class ImportRecording : public QObject
{
    Q_OBJECT

public:
    explicit ImportRecording(ImportMode mode, QObject *parent = nullptr);
    ~ImportRecording() override;

    /// Notes that \a files are going to be copied, and calls \a begun with one id for each when
    /// that is on the disk. Never calls it from within.
    void begin(const ImportOrder &order, const QVector<ImportFile> &files,
               const orderqueries::Identity &identity,
               const std::function<void(const QVector<ledger::CopyId> &ids)> &begun);
    /// \a copies did not come about.
    static void withdraw(const QVector<ledger::CopyId> &copies, const QString &reason);

    /// The order is being announced: what is copied by now is what its reply will be about, earlier
    /// runs' files included.
    void announce(const OrderIdentity &order);
    /// The service took what was announced, but for the files that are missing there: paths of
    /// their targets.
    void registered(const OrderIdentity &order, const QStringList &missing, const QString &reason);

    /// Nothing more is copied.
    void end();

private:
    ledger::RunId run(const orderqueries::Identity &identity);

    ImportMode mode_;
    ledger::RunId run_ = 0; ///< 0 while nothing is copied
    QHash<OrderIdentity, QVector<ledger::Copy>> announced_;
};
