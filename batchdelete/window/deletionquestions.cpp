#include "batchdelete/window/deletionquestions.h"

#include "batchdelete/run/batchdeleterun.h"
#include "batchdelete/run/deletiontexts.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
#include "widgets/boxes/toast.h"

DeletionQuestions::DeletionQuestions(QWidget *window, BatchDeleteRun *run)
    : QObject(window), window_(window), run_(run)
{
    connect(run, &BatchDeleteRun::pausedForDeclines, this, &DeletionQuestions::askToGoOn);
    connect(run, &BatchDeleteRun::announcementFailed, this,
            &DeletionQuestions::onAnnouncementFailed);
    connect(run, &BatchDeleteRun::finished, this, &DeletionQuestions::onRunFinished);
    connect(run->reporter(), &DeletionReporter::resubmitNeeded, this,
            &DeletionQuestions::askForResubmit);
}

void DeletionQuestions::onAnnouncementFailed(const ServiceReply &reply)
{
    if (silent_)
        return;
    if (reply.outcome == ServiceReply::Outcome::NoAnswer)
        MessageBox::warning(window_, QStringLiteral("提交数据失败!"));
    else
        showServiceFailure(window_, reply, reply.message);
}

void DeletionQuestions::askForResubmit(const QString &question, const QString &certificateError)
{
    if (!certificateError.isEmpty())
        showCertificateRefused(window_, certificateError);
    MessageBox::question(window_, BoxText(question).explained(deletiontexts::resubmitChoices()),
                         QMessageBox::Ok | QMessageBox::Cancel | QMessageBox::Abort,
                         [this](QMessageBox::StandardButton answer) { answerResubmit(answer); });
}

void DeletionQuestions::askToGoOn()
{
    ConfirmDialog::ask(
        window_,
        deletiontexts::pauseQuestion().endangering(QMessageBox::Ok, QStringLiteral("继续删除")),
        ConfirmDialog::Enter::Cancels, [this](bool goOn) { run_->answerPause(goOn); });
}

void DeletionQuestions::answerResubmit(QMessageBox::StandardButton answer)
{
    if (!run_->reporter()->isAsking())
        return;                       // the run has ended meanwhile
    if (answer == QMessageBox::Abort) // one by one the files of a large order would ask again
        run_->stop();
    run_->reporter()->answerResubmit(answer == QMessageBox::Ok);
}

void DeletionQuestions::onRunFinished(const DeletionSummary &summary)
{
    if (silent_)
        return;
    const QString text = deletiontexts::summaryText(summary);
    switch (summary.end) {
    case DeletionSummary::End::Completed:
        MessageBox::information(window_, text);
        break;
    case DeletionSummary::End::Declined:
        MessageBox::warning(window_, text);
        break;
    case DeletionSummary::End::Stopped:
        Toast::show(window_, QStringLiteral("批量删除已停止"));
        break;
    case DeletionSummary::End::NotAnnounced:
        break; // told already
    }
}
