#include "files/transferprogress.h"

#include <algorithm>
#include <array>

namespace {

constexpr qint64 rateWindowMs = 5000;

QString clockText(qint64 seconds)
{
    constexpr qint64 hour = 3600;
    constexpr qint64 minute = 60;
    const QString tail = QStringLiteral("%1:%2")
                             .arg(seconds % hour / minute, 2, 10, QLatin1Char('0'))
                             .arg(seconds % minute, 2, 10, QLatin1Char('0'));
    return seconds < hour ? tail : QStringLiteral("%1:%2").arg(seconds / hour).arg(tail);
}

} // namespace

QString dataSizeText(double bytes)
{
    static const std::array<QString, 4> units = {QStringLiteral(" B"), QStringLiteral(" KB"),
                                                 QStringLiteral(" MB"), QStringLiteral(" GB")};
    constexpr double step = 1024;
    std::size_t unit = 0;
    // 1023.96 would be shown as 1024.0 of the smaller unit.
    while (bytes >= (unit == 0 ? step : step - 0.05) && unit + 1 < units.size()) {
        bytes /= step;
        ++unit;
    }
    return QString::number(bytes, 'f', unit == 0 ? 0 : 1) + units.at(unit);
}

static QString doneText(const TransferProgress &progress)
{
    return QStringLiteral("文件 %1/%2 · %3 / %4")
        .arg(progress.filesDone)
        .arg(progress.filesTotal)
        .arg(dataSizeText(double(progress.bytesDone)), dataSizeText(double(progress.bytesTotal)));
}

void TransferRate::add(qint64 ms, qint64 bytesDone)
{
    if (!samples_.empty() && bytesDone < samples_.back().bytes)
        samples_.clear(); // a file that failed takes its bytes back
    samples_.push_back({ms, bytesDone});
    while (samples_.size() > 2 && samples_.at(1).ms <= ms - rateWindowMs)
        samples_.pop_front();
}

void TransferRate::clear()
{
    samples_.clear();
}

double TransferRate::bytesPerSecond() const
{
    if (samples_.size() < 2 || samples_.back().ms == samples_.front().ms)
        return 0;
    return double(samples_.back().bytes - samples_.front().bytes) * 1000.0 /
           double(samples_.back().ms - samples_.front().ms);
}

qint64 TransferRate::secondsLeft(qint64 bytesLeft) const
{
    const double rate = bytesPerSecond();
    return rate > 0 ? qRound64(double(std::max<qint64>(bytesLeft, 0)) / rate) : -1;
}

QString pausedText(const TransferProgress &progress)
{
    return QStringLiteral("已暂停 · ") + doneText(progress);
}

QString progressText(const TransferProgress &progress, const TransferRate &rate)
{
    QString text =
        QStringLiteral("%1 · %2/s").arg(doneText(progress), dataSizeText(rate.bytesPerSecond()));
    const qint64 left = rate.secondsLeft(progress.bytesTotal - progress.bytesDone);
    if (left >= 0)
        text += QStringLiteral(" · 剩余 ") + clockText(left);
    return text;
}
