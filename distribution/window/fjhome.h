#pragma once

#include "distribution/run/distributionrun.h"
#include "distribution/run/oldfilerun.h"
#include "net/servicecall.h"
#include "tasks/latest.h"
#include "widgets/orders/orderdestination.h"
#include "widgets/windows/framelesswindow.h"

#include <QElapsedTimer>
#include <QTimer>

class FJLeftPanel;
class FJRightPanel;
class SharedWidth;

/// The tool window behind the cards 下载原始档, 下载选片结果, 设计分件 and 下载照片交付: search
/// orders, tick some, and have their photos written below a directory. What each card writes stands
/// in docs/distribution.md; what is decided lives in DistributionRun and planOrder().
class FJHome : public FramelessWindow, public OrderDestination
{
    Q_OBJECT

public:
    explicit FJHome(QWidget *parent = nullptr);
    ~FJHome() override;

    /// Sets the window up for a card; before it is shown. 设计分件 at first.
    void setCard(const QString &card);
    void goTo(const OrderPlace &place) override;
    DesignFileSplitTypes splitType() const { return type_; }

    /// Asks the service which photos of the order were downloaded, and shows them.
    void getOrderInfo(const OrderData &order);

public slots:
    void onStartProcessRequested();
    /// A task's result has been counted.
    void slt_copypicthread(bool success, const QString &type, const QString &copyFile,
                           const QString &imgData, const QString &errmsg);

protected:
    CloseAnswer closeRequested() override;
    void showEvent(QShowEvent *event) override;

private:
    void connectPanels();
    void connectRun();
    void search(const QString &searchType, const QString &searchText);
    void changeShop(const QString &shopId);
    void onRunFinished(const RunSummary &summary);
    void putAway(const QVector<ProvedOrder> &orders);
    void onPutAway(const QVector<PutAway> &results);
    void closeWhenIdle();
    void showSpeed();
    bool refusesWhileRunning();
    void abandonPhotos();

    DesignFileSplitTypes type_ = DesignFileSplitTypes::Distribution;
    bool opened_ = false;
    DistributionRun run_;
    OldFileRun oldFiles_;
    OrderData current_; ///< the run's
    LatestCall photosCall_;
    Latest photosReading_; ///< of its reply
    QTimer closeTimer_;
    QElapsedTimer clock_; ///< of the run
    TransferRate rate_;
    FJRightPanel *right_; ///< its search bar says what the other half searches
    FJLeftPanel *left_;
    SharedWidth *halves_;
};
