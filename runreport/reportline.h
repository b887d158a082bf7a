#pragma once

#include "runreport/runreport.h"
#include "tasks/latest.h"

#include <QObject>
#include <QString>

#include <functional>

class NoticeBar;
class QWidget;

/// Tells in a window's bar what its last run did, beside the box that tells of its end: the counts
/// of all orders, each order on demand, for the clipboard and as a file. Without a ledger it tells
/// nothing. Belongs to the window; interface thread, waits for nothing.
class ReportLine : public QObject
{
    Q_OBJECT

public:
    /// \a bar is the window's.
    ReportLine(QWidget *window, NoticeBar *bar);

    /// Of the run that has ended, which was for \a work; of none twice. \a retryAll: what tries
    /// again what failed.
    void tellOf(ledger::Work work, const std::function<void()> &retryAll);
    /// Another run begins.
    void takeAway();

private:
    void show(const RunReport &report, const std::function<void()> &retryAll);
    void showAll(const RunReport &report);
    void save(const RunReport &report);

    QWidget *window_;
    NoticeBar *bar_;
    Latest reading_;
    ledger::RunId told_ = 0; ///< the latest that was told of
};
