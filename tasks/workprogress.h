#pragma once

#include <QMetaType>

/// How far the work of a tool's window is, for whoever shows it outside of the window.
struct WorkProgress
{
    enum class State {
        None, ///< nothing goes on
        Running,
        Paused,
        Failed, ///< nothing goes on, and something of the last run failed
    };

    State state = State::None;
    int done = 0; ///< of total files, or whatever the tool counts
    int total = 0;
    double share = 0; ///< 0 to 1

    bool operator==(const WorkProgress &other) const
    {
        return state == other.state && done == other.done && total == other.total &&
               qFuzzyCompare(1 + share, 1 + other.share);
    }
    bool operator!=(const WorkProgress &other) const { return !(*this == other); }
};
Q_DECLARE_METATYPE(WorkProgress)
