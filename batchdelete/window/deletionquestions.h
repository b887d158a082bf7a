#pragma once

#include "net/servicecall.h"

#include <QMessageBox>
#include <QObject>
#include <QString>

class BatchDeleteRun;
class QWidget;
struct DeletionSummary;

/// What a run of the batch deletion asks and tells the user on its way: whether to report a file
/// again, whether to go on, why orders were not announced, how it ended.
class DeletionQuestions : public QObject
{
    Q_OBJECT

public:
    /// Boxes belong to \a window, which owns this and \a run.
    DeletionQuestions(QWidget *window, BatchDeleteRun *run);

    /// The window closes: from now on nothing is told.
    void fallSilent() { silent_ = true; }

private:
    void onAnnouncementFailed(const ServiceReply &reply);
    void askForResubmit(const QString &question, const QString &certificateError);
    void askToGoOn();
    void answerResubmit(QMessageBox::StandardButton answer);
    void onRunFinished(const DeletionSummary &summary);

    QWidget *window_;
    BatchDeleteRun *run_;
    bool silent_ = false;
};
