#include "batchdelete/run/deletiontexts.h"

#include "files/csv.h"

#include <QDateTime>
#include <QStringList>

namespace deletiontexts {

namespace {

QString nameWithReason(const BatchDeleteFileInfo &file)
{
    return file.displayName() + QStringLiteral(": ") +
           (file.reason.isEmpty() ? deletionStateText(file.state) : file.reason);
}

} // namespace

BoxText succeededList(const BatchDeleteOrderInfo &order)
{
    return BoxText::list(
        QStringLiteral(" 删除成功的照片"), order.files(),
        [](const BatchDeleteFileInfo &file) { return file.state == BatchDeleteFileInfo::Deleted; },
        [](const BatchDeleteFileInfo &file) { return file.displayName(); });
}

BoxText failedList(const BatchDeleteOrderInfo &order)
{
    return BoxText::list(
        QStringLiteral(" 删除失败的照片"), order.files(),
        [](const BatchDeleteFileInfo &file) { return file.hasFailed(); }, nameWithReason);
}

QString resubmitChoices()
{
    return QStringLiteral(
        "确定：再次提交这个文件的状态。\n"
        "取消：不再提交，文件标为“提交状态失败”，以后可以重新提交；继续处理本订单的其余文件，"
        "之后的订单不再开始。\n"
        "中止：不再提交，并停止删除，其余文件保留。");
}

BoxText pauseQuestion()
{
    return BoxText(QStringLiteral("连续两个文件的状态没有提交成功，删除已暂停。\n"
                                  "要继续处理本订单的其余文件吗？"))
        .explained(QStringLiteral("继续删除：提交失败的文件标为“提交状态失败”，不再逐个询问，"
                                  "以后可以重新提交。\n"
                                  "取消：停止删除，其余文件保留。"));
}

QString summaryText(const DeletionSummary &summary)
{
    const bool completed = summary.end == DeletionSummary::End::Completed;
    QString text =
        completed ? QStringLiteral("全部删除完成！") : QStringLiteral("批量删除已停止。");
    if (completed && summary.failed == 0 && summary.skipped == 0)
        return text;
    text += QStringLiteral("\n\n成功 %1 个文件，失败 %2 个文件")
                .arg(summary.deleted)
                .arg(summary.failed);
    if (summary.skipped > 0)
        text += QStringLiteral("\n跳过 %1 个订单").arg(summary.skipped);
    if (summary.untouched > 0)
        text += QStringLiteral("\n还有 %1 个订单没有处理").arg(summary.untouched);
    return text;
}

QString unreportedQuestion(int files, Leaving leaving, bool isRemembered)
{
    const bool isWindow = leaving == Leaving::Window;
    const QString left = isWindow ? QStringLiteral("关闭窗口后") : QStringLiteral("切换分店后");
    const QString again = isWindow ? QStringLiteral("下次打开时可以重新提交")
                                   : QStringLiteral("回到这个分店时可以重新提交");
    return QStringLiteral("有 %1 个文件已删除，但状态没有提交成功。\n%2，确认要%3吗？")
        .arg(QString::number(files), isRemembered ? again : left + QStringLiteral("无法再次提交"),
             isWindow ? QStringLiteral("关闭") : QStringLiteral("切换"));
}

QString elsewhereText(const ledger::Run &run)
{
    return QStringLiteral("这台电脑上的另一个程序正在处理这个订单（%1 开始，进程 %2），没有删除")
        .arg(QDateTime::fromMSecsSinceEpoch(run.begunMs).toString(QStringLiteral("MM-dd HH:mm")))
        .arg(run.processId);
}

bool hasOutcome(const BatchDeleteOrderInfo &order)
{
    return order.processed || !order.note.isEmpty();
}

QByteArray csv(const QVector<BatchDeleteOrderInfo> &orders)
{
    QByteArray table =
        ::csv::mark() +
        ::csv::line({QStringLiteral("订单号"), QStringLiteral("客户姓名"),
                     QStringLiteral("导片路径"), QStringLiteral("文件路径"),
                     QStringLiteral("文件大小"), QStringLiteral("状态"), QStringLiteral("原因")});
    for (const BatchDeleteOrderInfo &order : orders) {
        if (!hasOutcome(order))
            continue;
        const QStringList head{order.displayNumber(), order.customers(), order.netPath};
        if (order.files().isEmpty() || !order.note.isEmpty())
            table += ::csv::line(head + QStringList{{}, {}, {}, order.note});
        for (const BatchDeleteFileInfo &file : order.files()) {
            table += ::csv::line(head + QStringList{file.fullPath(), QString::number(file.size),
                                                    deletionStateText(file.state), file.reason});
        }
    }
    return table;
}

} // namespace deletiontexts
