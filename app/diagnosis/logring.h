#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <thread>

/// The log of the last runs, in a ring of files: what the program logs is written there as well as
/// wherever it went before. A thread of its own writes, so that nobody waits for the disk; a folder
/// that cannot be written only means that nothing is kept.
///
/// The newest file is NAME.log, the older ones NAME.1.log to NAME.4.log. A second program of the
/// same user at the same time has a ring of its own.
class LogRing
{
public:
    static constexpr int files = 5;
    static constexpr qint64 mostFileBytes = 2097152;
    /// Lines that wait while the disk does not answer; what comes on top is counted, not kept.
    static constexpr int mostWaiting = 20000;

    /// Begins to write into \a folder, which is made.
    explicit LogRing(const QString &folder, qint64 fileBytes = mostFileBytes);
    /// Writes what waits, for two seconds at most.
    ~LogRing();
    LogRing(const LogRing &) = delete;
    LogRing &operator=(const LogRing &) = delete;

    /// All that is logged comes here from now on, until this goes. One at a time.
    void install();
    /// Any thread; returns at once.
    void write(const QString &line);

    /// In the user's local application data.
    static QString standardFolder();
    /// Of the rings in \a folder, newest file first within each. Touches the disk.
    static QStringList filesIn(const QString &folder);
    /// Removes them, save those that a program is writing. Touches the disk.
    static void clear(const QString &folder);

private:
    struct Shared;
    static void run(const std::shared_ptr<Shared> &shared);

    std::shared_ptr<Shared> shared_; ///< a thread that hangs on its disk outlives this
    std::thread thread_;
};
