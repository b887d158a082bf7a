#pragma once

#include "runreport/failuremodel.h"

#include <QSortFilterProxyModel>
#include <QTimer>
#include <QWidget>

class ComboBox;
class EmptyStateTable;
class LineEdit;
class QLabel;

/// Those of a FailureModel that hold some words and are of one order.
class FailureFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void setWords(const QString &words);
    /// An empty one lets all through.
    void setOrder(const OrderIdentity &order);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    QString words_;
    OrderIdentity order_;
};

/// A run's failures with their whole reasons, searched by words and by order. Every tool shows its
/// own so.
class FailureView : public QWidget
{
    Q_OBJECT

public:
    /// \a failures must outlive its use.
    explicit FailureView(FailureModel *failures, QWidget *parent = nullptr);
    ~FailureView() override;

    /// Those of the selected rows.
    QVector<RunFailure> selected() const;
    /// Those that are not filtered away.
    QVector<RunFailure> shown() const;

signals:
    void selectionChanged();

private:
    void buildTable();
    void showOrders();
    void showCounts();
    void fitRows();

    FailureModel *failures_;
    FailureFilter filter_;
    LineEdit *words_;
    ComboBox *orders_;
    QLabel *count_;
    EmptyStateTable *table_;
    QTimer fitting_; ///< rows and orders follow the list now and then
};
