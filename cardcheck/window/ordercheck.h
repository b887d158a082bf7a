#pragma once

#include "cardcheck/run/ordercheckrun.h"
#include "cardcheck/window/orderfilemodel.h"
#include "widgets/orders/orderdestination.h"
#include "widgets/windows/framelesswindow.h"

#include <QElapsedTimer>
#include <QTimer>

class EmptyStateTable;
class LoadingOverlay;
class QLabel;
class QPushButton;
class SortedRows;

/// Shows whether one order is whole: what lies in its folder, what the service lists and what this
/// machine has imported, side by side.
class OrderCheck : public FramelessWindow
{
    Q_OBJECT

public:
    explicit OrderCheck(QWidget *parent = nullptr);
    ~OrderCheck() override;

    /// Looks at \a order, in the place of the one shown before.
    void check(const OrderToCheck &order);

signals:
    /// The user wants something done with the order in the tool of that card.
    void openToolRequested(const QString &card, const OrderPlace &order);

protected:
    CloseAnswer closeRequested() override;

private:
    QWidget *head();
    void buildTable();
    void start();
    void showProgress();
    void showComparison(const orderfilelist::Comparison &comparison);

    OrderCheckRun run_;
    QTimer ticking_; ///< while files are read
    QElapsedTimer clock_;
    TransferRate rate_;
    OrderFileModel files_;
    OrderToCheck order_;
    QLabel *heading_;
    QLabel *summary_;
    QPushButton *registerButton_;
    EmptyStateTable *table_;
    LoadingOverlay *overlay_;
    SortedRows *rows_ = nullptr;
};
