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
    /// The run that has ended.
    struct Run
    {
        ledger::Work work = ledger::Work::Unknown;
        /// What the ledger is not told of.
        QHash<OrderIdentity, QVector<OrderReport::Failure>> failures;
        std::function<void()> retryAll; ///< tries again what failed
        bool registersAgain = false;    ///< retryAll() also does what was not registered
    };

    /// \a bar is the window's.
    ReportLine(QWidget *window, NoticeBar *bar);

    /// Of none twice.
    void tellOf(const Run &run);
    /// Another run begins.
    void takeAway();

private:
    void show(const RunReport &report, const Run &run);
    void showAll(const RunReport &report);
    void save(const RunReport &report);

    QWidget *window_;
    NoticeBar *bar_;
    Latest reading_;
    ledger::RunId told_ = 0; ///< the latest that was told of
};
