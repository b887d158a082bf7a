#pragma once

#include <QString>
#include <QStringList>

/// Collects what is logged, on any thread, instead of printing it, as long as it lives. One at a
/// time.
class LogLines
{
public:
    LogLines();
    ~LogLines();
    LogLines(const LogLines &) = delete;
    LogLines &operator=(const LogLines &) = delete;

    QStringList all() const;
    /// How many lines begin like this.
    int count(const QString &beginning) const;
    void clear();
};
