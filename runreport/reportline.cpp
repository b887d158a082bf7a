#include "runreport/reportline.h"

#include "ledger/ledger.h"
#include "widgets/boxes/noticebar.h"

namespace {

const QString lineId = QStringLiteral("runReport");

} // namespace

ReportLine::ReportLine(FramelessWindow *window, NoticeBar *bar)
    : QObject(window), page_(std::make_unique<RunPage>(window)), bar_(bar)
{
}

ReportLine::~ReportLine() = default;

void ReportLine::begin()
{
    takeAway();
    page_->failures()->clear();
}

void ReportLine::tellOf(const Run &run)
{
    // What the service said of the last order may still be on its way into the ledger.
    Ledger::current().whenWritten(this, reading_.only([this, run](bool) {
        Ledger::current().ask(
            this,
            [work = run.work, failures = run.failures, told = told_](const LedgerReader &reader) {
                RunReport report = RunReport::ofLatest(reader, work, told);
                report.add(failures);
                return report;
            },
            reading_.only([this, run](const RunReport &report) {
                if (!report.isEmpty())
                    told_ = report.run;
                show(report, run);
            }));
    }));
}

void ReportLine::takeAway()
{
    reading_.abandon();
    bar_->remove(lineId);
    page_->dropReport();
}

void ReportLine::show(const RunReport &report, const Run &run)
{
    const int failed = page_->failures()->rowCount();
    if (report.isEmpty() && failed == 0)
        return;
    if (!report.isEmpty())
        page_->showReport(report);
    if (failed > 0)
        page_->openBeside();
    Notice notice;
    notice.id = lineId;
    notice.severity =
        report.isGood() && failed == 0 ? Notice::Severity::Information : Notice::Severity::Warning;
    notice.text =
        report.isEmpty() ? QStringLiteral("%1 个文件失败").arg(failed) : report.headline();
    notice.actions = {{QStringLiteral("查看"), [this] { page_->open(); }},
                      {QStringLiteral("复制"), [this] { page_->copy(); }},
                      {QStringLiteral("导出"), [this] { page_->save(); }}};
    if (report.failed() > 0 || failed > 0 || (run.registersAgain && report.unregistered() > 0))
        notice.actions.append({QStringLiteral("全部重试"), run.retryAll});
    notice.dismissed = [this] { takeAway(); };
    bar_->setNotice(notice);
}
