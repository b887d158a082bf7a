#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "batchdelete/rules/deletionrules.h"
#include "tasks/latest.h"

#include <QObject>
#include <QStringList>
#include <QVector>

class BatchDeleteOrderModel;
class LoadingOverlay;
class QWidget;

/// What stands before a deletion: looks which of the ticked orders may be emptied, has the user
/// confirm them, and then the account. Orders that may not be emptied get their reason as a note
/// and lose their tick. Interface thread; the folders are looked at on another.
class DeletionApproval : public QObject
{
    Q_OBJECT

public:
    /// Dialogs and the overlay belong to \a window, which owns the approval and the model.
    DeletionApproval(QWidget *window, BatchDeleteOrderModel *orders);

    /// \a publicRoots: see deletionrules. \a branch is that of the orders.
    void ask(const QString &branch, const QStringList &publicRoots);
    /// Gives up: nothing is approved any more until it is asked again.
    void cancel();

signals:
    /// These may be emptied.
    void approved(const QVector<BatchDeleteOrderInfo> &orders);

private:
    void confirmPlan(const deletionrules::DeletionPlan &plan, const Latest::Token &asked);
    void verifyAccount(const QVector<BatchDeleteOrderInfo> &orders, const Latest::Token &asked);

    QWidget *window_;
    BatchDeleteOrderModel *orders_;
    LoadingOverlay *overlay_;
    Latest asking_; ///< from the question until the account is verified
};
