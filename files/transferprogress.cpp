#include "files/transferprogress.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

constexpr qint64 rateWindowMs = 5000;
constexpr qint64 longIdleSeconds = 15;

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
    const QString files =
        QStringLiteral("文件 %1/%2").arg(progress.filesDone).arg(progress.filesTotal);
    const QString done = dataSizeText(double(progress.bytesDone));
    if (progress.bytesTotal > 0)
        return QStringLiteral("%1 · %2 / %3")
            .arg(files, done, dataSizeText(double(progress.bytesTotal)));
    return progress.bytesDone > 0 ? QStringLiteral("%1 · %2").arg(files, done) : files;
}

double TransferProgress::share() const
{
    double done = 0;
    if (bytesTotal > 0)
        done = double(bytesDone) / double(bytesTotal);
    else if (filesTotal > 0)
        done = double(filesDone) / filesTotal;
    return std::clamp(done, 0.0, 1.0);
}

void TransferRate::add(qint64 ms, const TransferProgress &progress)
{
    // Bytes that nobody knows of before foretell nothing.
    speeds_.add(ms, progress.filesDone, progress.bytesTotal > 0 ? progress.bytesDone : 0);
    if (!samples_.empty() && progress.bytesDone < samples_.back().bytes)
        samples_.clear(); // a file that failed takes its bytes back
    samples_.push_back({ms, progress.bytesDone});
    while (samples_.size() > 2 && samples_.at(1).ms <= ms - rateWindowMs)
        samples_.pop_front();
}

void TransferRate::hold()
{
    samples_.clear();
    speeds_.hold();
}

void TransferRate::clear()
{
    samples_.clear();
    speeds_ = TwoSpeeds();
}

double TransferRate::bytesPerSecond() const
{
    if (samples_.size() < 2 || samples_.back().ms == samples_.front().ms)
        return 0;
    return double(samples_.back().bytes - samples_.front().bytes) * 1000.0 /
           double(samples_.back().ms - samples_.front().ms);
}

qint64 TransferRate::secondsLeft(const TransferProgress &progress) const
{
    const qint64 left = speeds_.msLeft(progress.filesTotal - progress.filesDone,
                                       progress.bytesTotal - progress.bytesDone);
    return left < 0 ? -1 : qRound64(double(left) / 1000);
}

QString pausedText(const TransferProgress &progress)
{
    return QStringLiteral("已暂停 · ") + doneText(progress);
}

QString progressText(const TransferProgress &progress, const TransferRate &rate)
{
    QString text = doneText(progress);
    if (progress.bytesTotal > 0 || progress.bytesDone > 0)
        text += QStringLiteral(" · %1/s").arg(dataSizeText(rate.bytesPerSecond()));
    const qint64 left = rate.secondsLeft(progress);
    if (rate.secondsIdle() >= longIdleSeconds)
        text += QStringLiteral(" · %1 没有进展").arg(clockText(rate.secondsIdle()));
    else if (left >= 0)
        text += QStringLiteral(" · 剩余 ") + clockText(left);
    return text;
}

QString currentText(const TransferProgress &progress)
{
    QStringList parts{progress.order, progress.file};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}
