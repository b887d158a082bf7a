#pragma once

#include "fileimport/rules/importrequests.h"
#include "fileimport/run/choicerestoring.h"
#include "fileimport/run/orderregistration.h"
#include "net/orderlookup.h"
#include "pending/pendingbar.h"
#include "pending/pendingchoices.h"
#include "pending/unfinisheddeletions.h"
#include "pending/unregisteredorders.h"
#include "tasks/latest.h"

#include <QObject>
#include <QVector>

#include <memory>

class BranchSession;
class ImportOrderPanel;
class ImportOrderTableModel;
class ImportRun;
class OrderFinder;

/// Nothing that was chosen in the import window is forgotten: remembers it beyond searches and
/// windows, and offers in the bar below the table what was not done to its end. Nothing starts by
/// itself. Wires; what it does is PendingChoices', UnfinishedDeletions' and the run's. Interface
/// thread.
class ImportRestorer : public QObject
{
    Q_OBJECT

public:
    /// All of it the window's, which owns this.
    struct Place
    {
        QWidget *window;
        ImportOrderTableModel *orders;
        ImportOrderPanel *panel;
        const BranchSession *branch;
        OrderFinder *finder;
    };

    explicit ImportRestorer(const Place &place);

    /// Before open(). \a run outlives this or is replaced by a later call.
    void setRun(ImportMode mode, ImportRun *run);
    /// Asks what earlier windows left.
    void open();
    /// Photos were deleted: offers those of which files are left.
    void lookForLeftPhotos() { deletions_.refresh(); }
    /// Writes what is not in the ledger yet.
    void flush();

private:
    void connectTable();
    void take(pendinglines::Kind kind, pendinglines::Offer offer, const QString &branch);
    void refresh();
    void countRest();
    bool isOffered(const OrderIdentity &order) const;

    bool mayReplaceTable();
    void showChoices();
    void putBack(const OrderLookup<ImportOrder>::Answer &answer);
    void listRestored(const choicerestoring::Restored &restored);
    void registerAgain();
    void onFoundAgain(const OrderLookup<ImportOrder>::Answer &answer);
    void registerIn(const QVector<ImportOrder> &orders, const QStringList &targets);
    void onRegistered(const OrderIdentity &order, const RegistrationResult &result);

    Place place_;
    ImportMode mode_ = ImportMode::Originals;
    ImportRun *run_ = nullptr;
    std::unique_ptr<PendingChoices> choices_;
    PendingBar *bar_;
    OrderLookup<ImportOrder> lookup_;
    UnregisteredOrders unregistered_;
    UnfinishedDeletions deletions_;
    Latest restoring_;
};
