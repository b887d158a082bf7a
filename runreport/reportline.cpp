#include "runreport/reportline.h"

#include "files/filewriting.h"
#include "ledger/ledger.h"
#include "tasks/background.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/noticebar.h"
#include "widgets/boxes/toast.h"

#include <QClipboard>
#include <QDateTime>
#include <QGuiApplication>

namespace {

const QString lineId = QStringLiteral("runReport");

} // namespace

ReportLine::ReportLine(QWidget *window, NoticeBar *bar)
    : QObject(window), window_(window), bar_(bar)
{
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
                if (report.isEmpty())
                    return;
                told_ = report.run;
                show(report, run);
            }));
    }));
}

void ReportLine::takeAway()
{
    reading_.abandon();
    bar_->remove(lineId);
}

void ReportLine::show(const RunReport &report, const Run &run)
{
    Notice notice;
    notice.id = lineId;
    notice.severity = report.isGood() ? Notice::Severity::Information : Notice::Severity::Warning;
    notice.text = report.headline();
    notice.actions = {{QStringLiteral("查看"), [this, report] { showAll(report); }},
                      {QStringLiteral("复制"),
                       [this, report] {
                           QGuiApplication::clipboard()->setText(
                               report.headline() + QLatin1Char('\n') +
                               report.lines().join(QLatin1Char('\n')));
                           Toast::show(window_, QStringLiteral("导入结果已复制"));
                       }},
                      {QStringLiteral("导出"), [this, report] { save(report); }}};
    if (report.failed() > 0 || (run.registersAgain && report.unregistered() > 0))
        notice.actions.append({QStringLiteral("全部重试"), run.retryAll});
    notice.dismissed = [this] { takeAway(); };
    bar_->setNotice(notice);
}

void ReportLine::showAll(const RunReport &report)
{
    MessageBox::information(window_, BoxText(report.headline(), report.lines()).copyable());
}

void ReportLine::save(const RunReport &report)
{
    const QString now = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString path = FileDialog::saveFile(
        window_, QStringLiteral("导出"), QStringLiteral("导入结果-%1.csv").arg(now),
        QStringLiteral("CSV (*.csv)"), QStringLiteral("history"));
    if (path.isEmpty())
        return;
    onDisk(
        this, path, [path, report] { return writeBytes(path, report.csv()); },
        [this, path](bool isWritten) {
            if (isWritten)
                Toast::show(window_, QStringLiteral("已导出: %1").arg(path));
            else
                MessageBox::warning(window_, QStringLiteral("文件保存失败: %1").arg(path));
        });
}
