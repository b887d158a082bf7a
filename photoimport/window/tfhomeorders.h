#pragma once

#include "net/branchsession.h"
#include "photoimport/orders/foundorders.h"
#include "widgets/orders/orderfinder.h"

#include <QMap>
#include <QString>
#include <QWidget>

class OrderSearchBar;
class tfhomeorders_OrderListWidget;
class tforderlistmodel;

/// The left half of the photo import window: the search panel with branch and person filter, and
/// the orders. It switches branches and searches in the window's own name and puts what it finds
/// into the model. While the window is importing it does neither.
class tfhomeorders : public QWidget
{
    Q_OBJECT

public:
    explicit tfhomeorders(tforderlistmodel *model, QWidget *parent = nullptr);

    tfhomeorders_OrderListWidget *table() const { return table_; }
    const orderqueries::Identity &identity() const { return branch_.identity(); }
    const QString &publicPath() const { return branch_.publicPath(); }
    OrderFinder *finder() const { return finder_; }

    /// The first branch switch; orders and persons follow by themselves.
    void open();
    void goTo(const OrderPlace &place) { finder_->goTo(place); }
    /// Abandons what is under way.
    void abandon();
    /// From now on searches and branch choices answer that an import is going on.
    void setImporting(bool importing);
    /// Searches again for what is listed, in silence, for what the service knows by now.
    void refreshImportCounts();

signals:
    /// A branch was switched to: "shopid", "superid", "managerid".
    void changeShop(const QMap<QString, QString> &shop);
    /// The orders' data was renewed, whether they are other orders or not.
    void ordersChanged();

private:
    void connectParts();
    void onBranchChosen(int index);
    void onSearchClicked();
    QString leavingQuestion() const;
    void onBranchLeft();
    void onBranchSwitched();
    void takeOrders(const photoorders::FoundOrders &found, OrderFinder::Search search);

    tforderlistmodel *model_;
    BranchSession branch_;
    OrderSearchBar *searchBar_;
    tfhomeorders_OrderListWidget *table_;
    OrderFinder *finder_;
    bool importing_ = false;
};
