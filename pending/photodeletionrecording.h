#pragma once

#include "ledger/ledgerrecords.h"
#include "tasks/latest.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QVector>

#include <functional>

/// What a deletion of single photos tells the ledger: before the service is asked each photo's
/// file, by what the ledger knows of it; then that the service agreed, and which files are gone.
/// One deletion at a time. Interface thread, never blocks.
class PhotoDeletionRecording : public QObject
{
    Q_OBJECT

public:
    struct Photo
    {
        QString id;   ///< the service's
        QString path; ///< in either form; empty when nobody knows where it lies
        /// What the file is, where that was read from the disk; otherwise the ledger is asked.
        qint64 bytes = -1;
        qint64 modifiedMs = 0;
        ledger::Hash hash = {};
    };

    explicit PhotoDeletionRecording(QObject *parent = nullptr);
    ~PhotoDeletionRecording() override;

    /// Ends what was recorded before, and calls \a begun when the rows are on the disk, or cannot
    /// be.
    void begin(const ledger::OrderKey &order, const QVector<Photo> &photos,
               std::function<void()> begun);
    /// The service has deleted the photos.
    void announced();
    /// The service has not, for \a reason.
    void refused(const QString &reason);
    /// Nobody knows whether the service has: that is offered to be looked into from the end on.
    void unanswered() { refused(ledger::unansweredText()); }
    /// The file at \a path, in either form, is not on the disk any more.
    void gone(const QString &path);
    void failed(const QString &path, const QString &reason);
    /// Nothing more comes. What was announced and is not gone is offered from now on. What has not
    /// begun never does.
    void end();

    /// The service was asked to delete \a photos (its ids) of \a order earlier and did not answer,
    /// and names them no more: it has deleted them.
    static void announceForgotten(const OrderIdentity &order, const QStringList &photos);

private:
    void enter(const ledger::OrderKey &order, const QVector<Photo> &photos,
               const QVector<ledger::Copy> &copies);

    Latest beginning_;
    ledger::RunId run_ = 0;
    QHash<QString, ledger::DeletionId> rows_; ///< by wirePathKey()
};
