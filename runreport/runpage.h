#pragma once

#include "runreport/failuremodel.h"
#include "runreport/orderreportmodel.h"
#include "tasks/latest.h"
#include "widgets/windows/framelesswindow.h"

#include <functional>

class EmptyStateTable;
class FailureView;
class QLabel;
class QPushButton;

/// What became of a tool's run, in a window beside the tool's: while the run goes on the files that
/// failed, as they come; at its end, for an import, each order's counts above them. It holds up
/// nothing. Goes when the tool's window does. Interface thread, waits for nothing.
class RunPage : public FramelessWindow
{
    Q_OBJECT

public:
    struct Retry
    {
        std::function<void(const QVector<RunFailure> &failures)> selected;
        std::function<void()> all;
        QString busy; ///< why nothing can be tried again at the moment; empty when it can
    };

    /// \a tool outlives it; its title says whose run this is.
    explicit RunPage(FramelessWindow *tool);
    ~RunPage() override;

    FailureModel *failures() { return &failures_; }
    /// Without ways nothing is offered to be tried again.
    void setRetry(const Retry &retry);

    void showReport(const RunReport &report);
    /// It is not true any more.
    void dropReport();

    /// Where the user is to see it: in front, with the focus.
    void open();
    /// The same without taking the focus; below a box of the tool.
    void openBeside();

    /// For the clipboard: the report, or without one the failures.
    void copy();
    /// The same, as a table for spreadsheet programs, where the user says.
    void save();

private:
    QWidget *buildOrders();
    QWidget *buildButtons();
    void setHeadline();
    void showButtons();
    void placeOnce();
    /// Whose toasts and boxes are seen.
    QWidget *seen() { return isVisible() ? this : static_cast<QWidget *>(tool_); }

    FramelessWindow *tool_;
    FailureModel failures_;
    OrderReportModel orders_;
    RunReport report_;
    Retry retry_;
    Latest saving_;
    bool isPlaced_ = false;

    QLabel *headline_;
    EmptyStateTable *orderTable_;
    FailureView *view_;
    QPushButton *retrySelected_;
    QPushButton *retryAll_;
    QPushButton *copy_;
    QPushButton *export_;
};
