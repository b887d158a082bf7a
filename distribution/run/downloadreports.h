#pragma once

#include "net/orderqueries.h"
#include "tasks/requestqueue.h"

#include <QObject>
#include <QString>

/// Tells the service which photos were downloaded, a few requests at a time: an order may hold
/// thousands. Nothing hangs on the answers. Lives on the interface thread.
class DownloadReports : public QObject
{
    Q_OBJECT

public:
    explicit DownloadReports(QObject *parent = nullptr);

    void add(const QString &imageId, const orderqueries::Identity &identity);
    /// Whether the service has not answered all of them yet.
    bool isBusy() const { return queue_.isBusy(); }

    /// Does not wait for the answers any more.
    void abandon();

signals:
    /// The last one has been answered.
    void allAnswered();

private:
    RequestQueue queue_;
};
