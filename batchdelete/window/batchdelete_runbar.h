#pragma once

#include "files/transferprogress.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class BatchDelete_ExportButton;
class BatchDeleteOrderModel;
class BatchDeleteRun;
class QLabel;
class QPushButton;
class TransferView;

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
    void workChanged(const WorkProgress &work);

private:
    void showOrderCount();
    void showProgress();

    const BatchDeleteOrderModel *orders_;
    const BatchDeleteRun *run_;
    QLabel *countLabel_;
    QLabel *runLabel_;
    TransferView *progress_;
    QTimer timer_;
    QElapsedTimer clock_;
    TransferRate rate_;
    BatchDelete_ExportButton *exportButton_;
    QPushButton *startButton_;
};
