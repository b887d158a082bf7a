#pragma once

#include "runreport/runpage.h"
#include "tasks/latest.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class NoticeBar;
class QWidget;

/// Tells in a window's bar what its last run did, beside the box that tells of its end: the counts
/// of all orders; each order on the run's page, which opens by itself when files have failed, and
/// which lists them while the run goes on. Without a ledger it tells of failures alone. Belongs to
/// the window; interface thread, waits for nothing.
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
    ReportLine(FramelessWindow *window, NoticeBar *bar);
    ~ReportLine() override;

    RunPage *page() { return page_.get(); }
    FailureModel *failures() { return page_->failures(); }

    /// A run begins: nothing is known of it.
    void begin();
    /// Of none twice.
    void tellOf(const Run &run);
    /// What it tells is not true any more.
    void takeAway();

private:
    void show(const RunReport &report, const Run &run);
    std::unique_ptr<RunPage> page_;
    NoticeBar *bar_;
    Latest reading_;
    ledger::RunId told_ = 0; ///< the latest that was told of
};
