#pragma once

#include "net/orderqueries.h"
#include "net/servicecall.h"
#include "orderbrowser/rules/orderlisting.h"

#include <QTimer>
#include <QWidget>

class QLabel;
class ThumbnailTableView;

/// The photos of one order that the customers chose, to be looked at. They are asked for once the
/// user has stayed with the order for a moment.
///
/// Before it is destroyed stop() is called and stopped() waited for; otherwise its destructor waits
/// for the image being decoded.
class ChosenPhotosView : public QWidget
{
    Q_OBJECT

public:
    explicit ChosenPhotosView(QWidget *parent = nullptr);

    /// Null: of none. \a who asks the service.
    void showOrder(const BrowsedOrder *order, const orderqueries::Identity &who);

    void stop();
    bool isStopped() const;

signals:
    void stopped();

private:
    void ask();
    void showReply(const ServiceReply &reply);

    QLabel *heading_;
    ThumbnailTableView *grid_;
    QTimer moment_;
    LatestCall call_;
    QString photoSet_;
    orderqueries::Identity who_;
};
