#pragma once

#include "cardcheck/run/daysearch.h"
#include "cardcheck/window/soughtordermodel.h"
#include "net/branchsession.h"

#include <QWidget>

class EmptyStateTable;
class OrderFinder;
class OrderSearchBar;
class QLabel;
class SortedRows;

/// The left half of the card check: the orders in whose folders files are sought that this machine
/// did not import. Lists those of the card's shooting days by itself; the user searches for others.
/// The selected ones count.
class SoughtOrderPanel : public QWidget
{
    Q_OBJECT

public:
    explicit SoughtOrderPanel(QWidget *parent = nullptr);
    ~SoughtOrderPanel() override;

    /// Switches to the branch that the window opens in.
    void open();
    void cancel();
    /// Searches the orders of these days and selects them all; as soon as there is a branch.
    void seekDays(const QVector<QDate> &days);
    /// While a check goes on neither branch nor orders change.
    void setLocked(bool locked) { locked_ = locked; }

    const BranchSession &branch() const { return branch_; }
    QVector<soughtorders::Order> selected() const;

signals:
    void selectionChanged();

private:
    void buildTable();
    void connectFinder();
    void search();
    void take(const soughtorders::Found &found);
    void takeDays(const soughtorders::Found &found);
    void selectAlso(int position);
    void showSelected();

    BranchSession branch_;
    SoughtOrderModel orders_;
    DaySearch daySearch_;
    OrderSearchBar *searchBar_;
    EmptyStateTable *table_;
    SortedRows *rows_ = nullptr;
    OrderFinder *finder_;
    QLabel *selected_;
    QVector<QDate> days_;       ///< of the card
    bool searchesNext_ = false; ///< as soon as there is a branch
    bool locked_ = false;
};
