#include "history/rules/recordtexts.h"

#include "look/colours.h"

#include <QDateTime>
#include <QStringList>

namespace recordtexts {

QString workText(ledger::Work work)
{
    switch (work) {
    case ledger::Work::Unknown:
        break;
    case ledger::Work::ImportOriginals:
        return QStringLiteral("导入原片");
    case ledger::Work::ImportRetouched:
        return QStringLiteral("导入精修片");
    case ledger::Work::PhotoImport:
        return QStringLiteral("导片工具");
    case ledger::Work::Distribution:
        return QStringLiteral("设计分件");
    case ledger::Work::DownloadOriginals:
        return QStringLiteral("下载原始档");
    case ledger::Work::DownloadSelection:
        return QStringLiteral("下载选片结果");
    case ledger::Work::DownloadDelivery:
        return QStringLiteral("下载照片交付");
    case ledger::Work::BatchDeletion:
        return QStringLiteral("批量删除");
    case ledger::Work::PhotoDeletion:
        return QStringLiteral("删除照片");
    }
    return QStringLiteral("未知");
}

QString timeText(qint64 ms)
{
    return ms == 0
               ? QString()
               : QDateTime::fromMSecsSinceEpoch(ms).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString sizeText(qint64 bytes)
{
    if (bytes < 0)
        return {};
    constexpr double step = 1024.0;
    static const QStringList units{QStringLiteral("B"), QStringLiteral("KB"), QStringLiteral("MB"),
                                   QStringLiteral("GB")};
    double amount = double(bytes);
    int unit = 0;
    while (amount >= step && unit + 1 < units.size()) {
        amount /= step;
        ++unit;
    }
    return QStringLiteral("%1 %2").arg(QString::number(amount, 'f', unit == 0 ? 0 : 1),
                                       units.at(unit));
}

QString cardText(const ledger::Volume &volume)
{
    if (volume.label.isEmpty() || volume.serial.isEmpty())
        return volume.label + volume.serial;
    return QStringLiteral("%1（%2）").arg(volume.label, volume.serial);
}

QString kindText(ledger::CopyKind kind)
{
    switch (kind) {
    case ledger::CopyKind::Bytes:
        return QStringLiteral("原样拷贝");
    case ledger::CopyKind::Upright:
        return QStringLiteral("转正副本");
    case ledger::CopyKind::Variant:
        return QStringLiteral("缩小副本");
    case ledger::CopyKind::Stored:
        return QStringLiteral("生成");
    }
    return {};
}

Ending endingOf(const ledger::Entry &entry)
{
    const int open =
        entry.deletions > 0 ? entry.deletions - entry.deleted : entry.chosen - entry.finished;
    if (entry.run.endedMs == 0 && !entry.run.brokenOff)
        return Ending::GoesOn;
    if (entry.run.brokenOff && open > 0)
        return Ending::BrokenOff;
    if (entry.failed > 0 || open > 0)
        return Ending::Failed;
    return entry.awaited > 0 ? Ending::Unregistered : Ending::Good;
}

QString endingText(const ledger::Entry &entry)
{
    const int open =
        entry.deletions > 0 ? entry.deletions - entry.deleted : entry.chosen - entry.finished;
    switch (endingOf(entry)) {
    case Ending::Good:
        return QStringLiteral("完成");
    case Ending::GoesOn:
        return QStringLiteral("进行中");
    case Ending::BrokenOff:
        return QStringLiteral("中断，%1 个未完成").arg(open);
    case Ending::Unregistered:
        return QStringLiteral("%1 个未登记").arg(entry.awaited);
    case Ending::Failed:
        return entry.failed > 0 ? QStringLiteral("%1 个失败").arg(entry.failed)
                                : QStringLiteral("%1 个未完成").arg(open);
    }
    return {};
}

QColor endingColour(Ending ending)
{
    switch (ending) {
    case Ending::Good:
        return colours::toColor(colours::success);
    case Ending::GoesOn:
        return colours::toColor(colours::chosen);
    case Ending::BrokenOff:
    case Ending::Unregistered:
        return colours::toColor(colours::deletionUnreported);
    case Ending::Failed:
        return colours::toColor(colours::failure);
    }
    return {};
}

QString countsText(const ledger::Entry &entry)
{
    if (entry.deletions > 0)
        return QStringLiteral("删除 %1/%2").arg(entry.deleted).arg(entry.deletions);
    QStringList parts{QStringLiteral("拷贝 %1/%2").arg(entry.finished).arg(entry.chosen)};
    if (entry.proved > 0)
        parts.append(QStringLiteral("已核对 %1").arg(entry.proved));
    if (entry.registered > 0 || entry.awaited > 0)
        parts.append(QStringLiteral("已登记 %1").arg(entry.registered));
    return parts.join(QStringLiteral("，"));
}

QString cardsText(const ledger::Entry &entry)
{
    QStringList cards;
    for (const ledger::Volume &volume : entry.volumes) {
        const QString card = cardText(volume);
        if (!card.isEmpty())
            cards.append(card);
    }
    return cards.join(QStringLiteral("，"));
}

} // namespace recordtexts
