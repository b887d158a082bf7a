#pragma once

#include "net/branchsession.h"
#include "orderbrowser/run/orderarranger.h"
#include "orderbrowser/run/rangesearch.h"
#include "orderbrowser/run/viewstore.h"
#include "widgets/orders/orderdestination.h"
#include "widgets/windows/framelesswindow.h"

#include <QTimer>

class DetailsPane;
class ExportButton;
class FilterChips;
class LoadingOverlay;
class OrderFinder;
class OrderSearchBar;
class BrowserTable;
class QLabel;
class QPushButton;
class ComboBox;

/// The order browser's window: searches orders and shows all that is known of them in columns that
/// the user arranges, sorts and filters.
class OrderList : public FramelessWindow
{
    Q_OBJECT

public:
    explicit OrderList(QWidget *parent = nullptr);
    ~OrderList() override;

signals:
    /// The user wants to go on with an order in the tool of that card.
    void openToolRequested(const QString &card, const QString &branch, const QString &orderPhotoId,
                           const QString &orderNumber);
    /// The user wants to know whether an order is whole.
    void orderCheckRequested(const OrderToCheck &order);

protected:
    CloseAnswer closeRequested() override;
    void showEvent(QShowEvent *event) override;

private:
    QWidget *controls();
    QWidget *foot();
    void buildLayout();
    void connectSearch();
    void connectTable();
    void addKeys();
    bool hasEnded() const;
    void endClosing();

    void onBranchSwitched();
    void restoreSearch();
    void onSearchRequested();
    void search(const BrowserSearch &search);
    void refresh();
    void takeListing(const OrderListing &listing);
    void giveBackMemory();

    void arrange();
    void showRows(const OrderListing &listing, const QVector<int> &rows);
    void setFilter(const QString &key, const QString &text);
    void showFilters();
    void chooseView(const QString &name);
    void showView();
    void arrangeColumns();
    void changeView(const OrderView &view);
    void keepViews();

    void showCounts();
    void showDetails();

    BranchSession branch_;
    RangeSearch rangeSearch_;
    OrderArranger arranger_;
    ViewStore store_;
    OrderViews views_;
    QTimer keepTimer_; ///< collects what is changed by dragging before it is written
    OrderSearchBar *searchBar_;
    BrowserTable *table_;
    LoadingOverlay *overlay_;
    OrderFinder *finder_;
    DetailsPane *details_;
    FilterChips *chips_;
    ComboBox *viewBox_;
    QPushButton *refreshButton_;
    ExportButton *export_;
    QLabel *counts_;
    QLabel *selected_;
    QLabel *refreshed_;
    OrderListing listing_;
    QHash<QString, QString> filters_;
    BrowserSearch asked_;   ///< the latest search
    bool hasAsked_ = false; ///< in this branch
    bool opened_ = false;
    bool viewsRead_ = false;
    bool restored_ = false; ///< the former opening's search is in the search bar
};
