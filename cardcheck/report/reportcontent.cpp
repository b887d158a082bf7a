#include "cardcheck/report/reportcontent.h"

#include "files/csv.h"
#include "files/safename.h"
#include "files/transferprogress.h"

#include <QMap>

namespace reportcontent {

using evidence::CheckedFile;
using evidence::State;

namespace {

/// More would be no list for an envelope; the table has them all.
constexpr int mostExceptions = 400;

QString cell(const QString &text)
{
    return QStringLiteral("<td>") + text.toHtmlEscaped() + QStringLiteral("</td>");
}

QString row(const QStringList &cells)
{
    QString html = QStringLiteral("<tr>");
    for (const QString &text : cells)
        html += cell(text);
    return html + QStringLiteral("</tr>");
}

QString table(const QStringList &headings, const QString &rows)
{
    QString html = QStringLiteral("<table width=\"100%\" border=\"1\" cellspacing=\"0\""
                                  " cellpadding=\"3\" style=\"border-collapse: collapse;\"><tr>");
    for (const QString &heading : headings)
        html += QStringLiteral("<th align=\"left\">") + heading.toHtmlEscaped() +
                QStringLiteral("</th>");
    return html + QStringLiteral("</tr>") + rows + QStringLiteral("</table>");
}

bool isProved(const CheckedFile &file)
{
    return file.state == State::Verified || file.state == State::VerifiedOnStorage;
}

QString orderText(const CheckedFile &file)
{
    const ledger::OrderKey &order = file.place.order;
    return QStringLiteral("%1 %2").arg(order.number, order.name).trimmed();
}

struct OrderLine
{
    int files = 0;
    int proved = 0;
    qint64 bytes = 0;
};

QString countsTable(const Report &report)
{
    const verdict::Tally tally = verdict::tallyOf(report.findings.files);
    QString rows;
    for (int state = 0; state < evidence::stateCount; ++state) {
        const int files = tally.of(State(state));
        if (files > 0) {
            rows += row({evidence::stateSign(State(state)) + QLatin1Char(' ') +
                             evidence::stateText(State(state)),
                         QString::number(files)});
        }
    }
    return table({QStringLiteral("状态"), QStringLiteral("照片、原始档和视频")}, rows);
}

QString ordersTable(const Report &report)
{
    QMap<QString, OrderLine> orders;
    for (const CheckedFile &file : report.findings.files) {
        if (!file.file.counts() || file.place.target.isEmpty())
            continue;
        OrderLine &line = orders[orderText(file)];
        ++line.files;
        line.proved += isProved(file) ? 1 : 0;
        line.bytes += file.file.bytes;
    }
    QString rows;
    for (auto order = orders.cbegin(); order != orders.cend(); ++order) {
        rows += row({order.key(), QString::number(order->files), QString::number(order->proved),
                     dataSizeText(double(order->bytes))});
    }
    return table({QStringLiteral("订单"), QStringLiteral("文件"), QStringLiteral("已核对"),
                  QStringLiteral("大小")},
                 rows);
}

QString exceptionsTable(const Report &report)
{
    QString rows;
    int count = 0;
    for (const CheckedFile &file : report.findings.files) {
        if (!file.file.counts() || isProved(file) || ++count > mostExceptions)
            continue;
        rows += row(
            {evidence::stateText(file.state), file.file.shown, orderText(file), file.place.target});
    }
    if (count == 0)
        return QStringLiteral("<p>没有例外。</p>");
    const QString more =
        count > mostExceptions
            ? QStringLiteral("<p>另有 %1 个，见 CSV。</p>").arg(count - mostExceptions)
            : QString();
    return table({QStringLiteral("状态"), QStringLiteral("卡上的文件"), QStringLiteral("订单"),
                  QStringLiteral("存储位置")},
                 rows) +
           more;
}

QString timeText(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString section(const QString &title, const QString &html)
{
    return QStringLiteral("<h3>") + title + QStringLiteral("</h3>") + html;
}

} // namespace

QString fileName(const Report &report, const QString &suffix)
{
    return safeFileName(
        QStringLiteral("存储卡核对 %1 %2.%3")
            .arg(report.card, report.when.toString(QStringLiteral("yyyyMMdd-HHmm")), suffix));
}

QString html(const Report &report)
{
    const verdict::Verdict all = verdict::of(report.findings);
    QString notes;
    for (const QString &note : all.notes)
        notes += QStringLiteral("<br>") + note.toHtmlEscaped();
    return QStringLiteral("<h2>存储卡核对报告</h2><p>存储卡: ") + report.card.toHtmlEscaped() +
           QStringLiteral("<br>路径: ") + report.findings.card.root.toHtmlEscaped() +
           QStringLiteral("<br>核对时间: ") + timeText(report.when) +
           QStringLiteral("<br>核对人: ") + report.who.toHtmlEscaped() +
           QStringLiteral("</p><h2>") + verdict::lightText(all.light) + QStringLiteral("  ") +
           all.headline.toHtmlEscaped() + QStringLiteral("</h2><p>") + notes.mid(4) +
           QStringLiteral("</p>") + section(QStringLiteral("汇总"), countsTable(report)) +
           section(QStringLiteral("按订单"), ordersTable(report)) +
           section(QStringLiteral("例外"), exceptionsTable(report));
}

QByteArray csvTable(const Report &report)
{
    QByteArray text = csv::mark();
    text += csv::line({QStringLiteral("状态"), QStringLiteral("卡上的文件"), QStringLiteral("类型"),
                       QStringLiteral("字节"), QStringLiteral("修改时间"), QStringLiteral("订单"),
                       QStringLiteral("客人"), QStringLiteral("存储位置"),
                       QStringLiteral("卡 XXH3-128"), QStringLiteral("存储 XXH3-128"),
                       QStringLiteral("本次核对")});
    for (const CheckedFile &file : report.findings.files) {
        text +=
            csv::line({evidence::stateText(file.state), file.file.shown,
                       cardfiles::kindText(file.file.kind), QString::number(file.file.bytes),
                       timeText(QDateTime::fromMSecsSinceEpoch(file.file.modifiedMs)),
                       file.place.order.number, file.place.order.name, file.place.target,
                       QString::fromLatin1(file.card.hash.toHex()),
                       QString::fromLatin1(file.target.hash.toHex()), evidence::proofText(file)});
    }
    return text;
}

} // namespace reportcontent
