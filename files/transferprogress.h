#pragma once

#include <QString>
#include <QtGlobal>

#include <deque>

/// How far a run that copies files is.
struct TransferProgress
{
    int filesDone = 0; ///< copied or failed
    int filesTotal = 0;
    qint64 bytesDone = 0;
    qint64 bytesTotal = 0;
};

/// Speed and time left, from what was done during the last seconds.
class TransferRate
{
public:
    /// \a bytesDone so far at \a ms on any steady clock.
    void add(qint64 ms, qint64 bytesDone);
    void clear();

    double bytesPerSecond() const;
    /// Seconds until \a bytesLeft are done; -1 while that cannot be told.
    qint64 secondsLeft(qint64 bytesLeft) const;

private:
    struct Sample
    {
        qint64 ms;
        qint64 bytes;
    };
    std::deque<Sample> samples_;
};

/// "96.0 MB"; units from B to GB, of 1024 each.
QString dataSizeText(double bytes);

/// "已暂停 · 文件 12/400 · 96.0 MB / 3.2 GB"
QString pausedText(const TransferProgress &progress);

/// "文件 12/400 · 96.0 MB / 3.2 GB · 45.3 MB/s · 剩余 01:12"
QString progressText(const TransferProgress &progress, const TransferRate &rate);
