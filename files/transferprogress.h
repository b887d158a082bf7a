#pragma once

#include "files/twospeeds.h"
#include "tasks/workprogress.h"

#include <QString>
#include <QtGlobal>

#include <deque>

/// How far a run that copies files is.
struct TransferProgress
{
    int filesDone = 0; ///< copied or failed
    int filesTotal = 0;
    qint64 bytesDone = 0;
    qint64 bytesTotal = 0; ///< 0 where nobody knows before
    QString order = {};    ///< what is being worked on, as users know it; may be empty
    QString file = {};

    /// 0 to 1.
    double share() const;
    WorkProgress work(WorkProgress::State state) const
    {
        return {state, filesDone, filesTotal, share()};
    }
};

/// Speed, from what was done during the last seconds, and time left.
class TransferRate
{
public:
    /// So far is the run at \a ms on any steady clock.
    void add(qint64 ms, const TransferProgress &progress);
    /// The run is paused until the next add().
    void hold();
    /// Another run begins.
    void clear();

    double bytesPerSecond() const;
    /// Seconds until all is done; -1 while that cannot be told.
    qint64 secondsLeft(const TransferProgress &progress) const;
    /// Seconds for which nothing was done.
    qint64 secondsIdle() const { return speeds_.idleMs() / 1000; }

private:
    struct Sample
    {
        qint64 ms;
        qint64 bytes;
    };
    std::deque<Sample> samples_;
    TwoSpeeds speeds_;
};

/// "96.0 MB"; units from B to GB, of 1024 each.
QString dataSizeText(double bytes);

/// "已暂停 · 文件 12/400 · 96.0 MB / 3.2 GB"
QString pausedText(const TransferProgress &progress);

/// "文件 12/400 · 96.0 MB / 3.2 GB · 45.3 MB/s · 剩余 01:12"; instead of the time left, when
/// nothing has been done for a while, for how long. Without bytes the speed is left out.
QString progressText(const TransferProgress &progress, const TransferRate &rate);

/// "TS10004-1 周子墨 · IMG_0012.JPG": what is being worked on; empty when that is not known.
QString currentText(const TransferProgress &progress);
