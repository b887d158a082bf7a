#pragma once

#include <QtGlobal>

/// How long the rest of a run takes. A thousand small files cost what making files costs, one large
/// file what its bytes cost, so both costs are read off what was done: ms a file, ms a byte. What
/// was done lately counts more. The time is handed in; paused time is none.
class TwoSpeeds
{
public:
    /// So many \a files and \a bytes are done at \a ms on any steady clock. Of a file that is being
    /// copied the bytes count already; one that failed takes them back.
    void add(qint64 ms, int files, qint64 bytes);
    /// The time from the last add() to the next does not count.
    void hold();

    /// ms that so many more files and bytes take; -1 while too little was done to tell.
    qint64 msLeft(int files, qint64 bytes) const;
    /// ms for which nothing was done.
    qint64 idleMs() const { return lastMs_ - progressMs_; }

private:
    /// Of a straight line through no constant: what was done in stretches of time, weighted by age.
    struct Sums
    {
        double files = 0;
        double bytes = 0;
        double ms = 0;
        double filesFiles = 0;
        double filesBytes = 0;
        double bytesBytes = 0;
        double filesMs = 0;
        double bytesMs = 0;

        void age(double factor);
        void add(double moreFiles, double moreBytes, double moreMs);
    };

    void begin(qint64 ms, int files, qint64 bytes);

    Sums sums_;
    bool holding_ = true;
    qint64 beginMs_ = 0; ///< of the stretch that is going on
    int beginFiles_ = 0;
    qint64 beginBytes_ = 0;
    int lastFiles_ = 0;
    qint64 lastBytes_ = 0;
    qint64 lastMs_ = 0;
    qint64 progressMs_ = 0; ///< when something was done last
};
