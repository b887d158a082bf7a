#pragma once

#include "distribution/rules/designfilesplittypes.h"
#include "distribution/window/distributionordermodel.h"
#include "net/branchsession.h"

#include <QModelIndex>
#include <QString>
#include <QVector>
#include <QWidget>

#include <functional>

class ArrangedColumns;
class FrozenTable;
class OrderFinder;
class OrderSearchBar;
class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class SortedRows;
class ProofPanel;
class TickDelegate;

/// The left half of the distribution window: the orders with their ticks, the progress of a run and
/// what failed in it. Searches orders, as the search bar on the other half says, and keeps whom it
/// does so as.
class FJLeftPanel : public QWidget
{
    Q_OBJECT

public:
    /// \a bar lives as long as the panel works.
    explicit FJLeftPanel(OrderSearchBar *bar, QWidget *parent = nullptr);
    ~FJLeftPanel() override;

    /// 1: searches by "order_list_type_1".
    void setListMode(ListMode mode) { listMode_ = mode; }
    const orderqueries::Identity &identity() const { return branch_.identity(); }
    OrderFinder *finder() const { return finder_; }
    ProofPanel *proofPanel() const { return proofPanel_; }

    /// Arranges the columns as the user left them in \a tool.
    void openColumns(const QString &tool);

    /// Searches, or first switches to the branch when the service has not confirmed one yet.
    void reqOrderList(const QString &searchType, const QString &keyword);
    /// What is to be asked before another branch takes over; empty when there is nothing to ask.
    void setLeavingQuestion(std::function<QString()> question);
    /// Abandons search and branch switch.
    void cancelRequests();

    /// The ticked orders in the order of the table's rows.
    QVector<OrderData> tickedOrders() const;
    /// True while a run goes on: ticks cannot be changed then.
    void setLocked(bool locked);

    void showRunProgress(const QString &text);
    void showStep(const QString &text);
    /// Speed and time left; empty after the run.
    void showSpeed(const QString &text);
    void showProgress(int value, int expected);
    void clearErrors();
    void addError(const QString &line);

signals:
    /// A search, or a branch switch, has ended, or (false) begun.
    void emitReqOrderFinish(bool enable);
    /// A tick changed; \a row is the order's position in the list.
    void orderSelected(int row, bool checked);
    void userInfoChange(const QString &shopid, const QString &uid, const QString &superid);
    /// The user went to another row.
    void orderShown(const OrderData &order);

public slots:
    // Rows and columns are those of the table.
    void onOrderSelectionChanged(int currentRow, int currentColumn, int previousRow,
                                 int previousColumn);
    void onCellClicked(int row, int column);
    void onSelectAllClicked();
    void onUnselectAllClicked();
    void onReqShopInfo(const QString &searchType, const QString &keyword, const QString &shopid);

private:
    void buildTable();
    void buildLayout();
    QWidget *buildErrorList();
    void connectFinder();
    void onBranchSwitched();
    void showOrders(const QVector<OrderData> &orders);

    BranchSession branch_;
    ListMode listMode_ = ListMode::Plain;
    bool locked_ = false;
    QString searchType_;
    QString keyword_;
    DistributionOrderModel model_;
    FrozenTable *table_;
    SortedRows *rows_ = nullptr;
    ArrangedColumns *columns_ = nullptr;
    TickDelegate *ticks_;
    OrderFinder *finder_;
    QPushButton *selectAll_;
    QPushButton *unselectAll_;
    QLabel *ticked_;
    QLabel *progressLabel_;
    QLabel *stepLabel_;
    QLabel *speedLabel_;
    QProgressBar *progressBar_;
    QWidget *errorList_ = nullptr;
    QLabel *errorHeading_ = nullptr;
    QPlainTextEdit *errors_ = nullptr;
    ProofPanel *proofPanel_;
};
