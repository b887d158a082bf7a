#pragma once

#include "app/context/orderidentity.h"
#include "net/orderqueries.h"

#include <QObject>
#include <QSet>
#include <QVector>

#include <functional>

class PhotoImportRun;
class QWidget;
class tforderlistmodel;

/// Starts imports for the user: tells when there is nothing to do, and asks before orders that
/// share a folder are imported. Rows are positions in the model.
class PhotoImportStarter : public QObject
{
    Q_OBJECT

public:
    struct Ways
    {
        /// Whether an order may change at the moment; tells the user why not.
        std::function<bool(int row)> mayChange;
        std::function<orderqueries::Identity()> identity; ///< in whose name the window acts
    };

    /// Boxes belong to \a window, which owns this, the model and the run.
    PhotoImportStarter(QWidget *window, tforderlistmodel *orders, PhotoImportRun *run, Ways ways);

    void startOrder(int row);
    void startAll();
    /// What failed, or the service did not take, among the order's files at \a indexes; among all
    /// when empty.
    void retry(int row, const QSet<int> &indexes);
    /// The same for all orders.
    void retryAll();
    /// The same for these, with what has not been imported yet.
    void retryOrders(const QVector<int> &rows);

signals:
    /// Orders are about to start, and none was being imported.
    void beginning();
    void started();

private:
    void start(const QVector<int> &rows, const QVector<int> &indexes = {});
    void startOrders(const QVector<OrderIdentity> &ids, const QVector<int> &indexes);

    QWidget *window_;
    tforderlistmodel *orders_;
    PhotoImportRun *run_;
    Ways ways_;
};
