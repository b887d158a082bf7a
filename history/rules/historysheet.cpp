#include "history/rules/historysheet.h"

#include "files/csv.h"
#include "history/rules/recordtexts.h"

namespace historysheet {

QByteArray entriesCsv(const QVector<ledger::Entry> &entries)
{
    QByteArray table = csv::mark();
    table += csv::line({QStringLiteral("时间"), QStringLiteral("工具"), QStringLiteral("订单号"),
                        QStringLiteral("客户"), QStringLiteral("操作人"), QStringLiteral("存储卡"),
                        QStringLiteral("文件数"), QStringLiteral("已完成"),
                        QStringLiteral("已核对"), QStringLiteral("已登记"), QStringLiteral("失败"),
                        QStringLiteral("字节"), QStringLiteral("结果")});
    for (const ledger::Entry &entry : entries) {
        const bool deletes = entry.deletions > 0;
        table += csv::line({recordtexts::timeText(entry.begunMs),
                            recordtexts::workText(entry.run.desk.work), entry.order.number,
                            entry.order.name, entry.run.who, recordtexts::cardsText(entry),
                            QString::number(deletes ? entry.deletions : entry.chosen),
                            QString::number(deletes ? entry.deleted : entry.finished),
                            QString::number(entry.proved), QString::number(entry.registered),
                            QString::number(entry.failed), QString::number(entry.bytes),
                            recordtexts::endingText(entry)});
    }
    return table;
}

QByteArray filesCsv(const ledger::Entry &entry, const QVector<FileRecord> &files)
{
    QByteArray table = csv::mark();
    table += csv::line({QStringLiteral("订单号"), QStringLiteral("文件名"), QStringLiteral("方式"),
                        QStringLiteral("状态"), QStringLiteral("核对"), QStringLiteral("字节"),
                        QStringLiteral("时间"), QStringLiteral("来源"), QStringLiteral("存储卡"),
                        QStringLiteral("目标"), QStringLiteral("XXH3-128")});
    for (const FileRecord &file : files) {
        table += csv::line({entry.order.number, file.name, file.kind, file.stateText, file.proof,
                            file.bytes < 0 ? QString() : QString::number(file.bytes),
                            recordtexts::timeText(file.timeMs), file.source, file.card, file.target,
                            file.hash});
    }
    return table;
}

} // namespace historysheet
