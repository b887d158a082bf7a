#pragma once

#include <QWidget>

class BatchDelete_ExportButton;
class BatchDeleteOrderModel;
class BatchDeleteRun;
class QLabel;
class QPushButton;

/// Between search and lists: how many orders were found, how far the run is, and the buttons that
/// start and stop it and that save its outcome. It only shows; what a click does is the window's.
class BatchDelete_RunBar : public QWidget
{
    Q_OBJECT

public:
    /// \a orders and \a run must outlive its use.
    BatchDelete_RunBar(const BatchDeleteOrderModel *orders, const BatchDeleteRun *run,
                       QWidget *parent = nullptr);

    void showRunState();
    /// How many orders are ticked.
    void showChecked(int count);

signals:
    /// Or stop, while a run goes on.
    void startClicked();

private:
    void showOrderCount();

    const BatchDeleteOrderModel *orders_;
    const BatchDeleteRun *run_;
    QLabel *countLabel_;
    QLabel *runLabel_;
    BatchDelete_ExportButton *exportButton_;
    QPushButton *startButton_;
};
