#pragma once

#include "files/chosenfiles.h"
#include "photoimport/rules/photorecords.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/// How one job of a source file ended.
enum class JobState { Waiting, Done, Failed };

/// One of the forms in which a source file is imported, see PhotoInfo::kind.
struct SourceJob
{
    QString kind;
    JobState state = JobState::Waiting;
    QString message; ///< why it failed
};

/// Whether the service knows of an imported file.
enum class RegistrationState { None, Pending, Registered, Refused };

/// One file chosen for an order, with the states of its jobs.
struct SourceFile
{
    QString path; ///< absolute, as this machine writes it
    QString name;
    qint64 size = 0; ///< bytes, when chosen
    QVector<SourceJob> jobs;
    RegistrationState registration = RegistrationState::None;
    QString refusal; ///< why the service did not take it

    int countOf(JobState state) const;
    bool isUntouched() const { return countOf(JobState::Waiting) == jobs.size(); }
    bool isComplete() const { return countOf(JobState::Done) == jobs.size(); }
    bool hasFailed() const { return countOf(JobState::Failed) > 0; }
    /// Anything left to do: a job, or telling the service.
    bool isUnfinished() const;
    /// Why jobs failed and why the service refused; empty when all is well.
    QString failureText() const;
};

/// How far an order's files are, counted from their states.
struct FilesSummary
{
    int files = 0;
    int complete = 0;     ///< every job done
    int failed = 0;       ///< some job failed
    int reported = 0;     ///< no job waiting
    int unregistered = 0; ///< refused by the service
    qint64 bytes = 0;
    qint64 bytesReported = 0; ///< a file counts by the share of its jobs that are reported
};

FilesSummary summarise(const QVector<SourceFile> &files);

/// Positions of the files that are to be tried once more.
struct FilesToRetry
{
    QVector<int> failed;       ///< some job failed
    QVector<int> unregistered; ///< refused by the service
};

/// Among the files at \a indexes; among all when empty.
FilesToRetry filesToRetry(const QVector<SourceFile> &files, const QSet<int> &indexes);

/// Chosen or dropped paths that are to become files of an order.
struct FileChoice
{
    QStringList paths;   ///< files, and with expand folders too
    bool expand = false; ///< take what the filter takes; read folders with all below
    int photoMode = 0;
    QVector<SourceFile> listed; ///< what the order has already
};

struct FileChoiceResult
{
    QVector<SourceFile> files;    ///< the new ones
    QVector<QStringList> clashes; ///< sources that would land on one target, grouped
    QStringList unreadable;       ///< folders whose photos are not among them
    chosenfiles::Kinds ignored;   ///< left out by the filter
    int repeated = 0;             ///< listed already
};

/// Describes the chosen files. Blocks; for worker threads. A file that cannot be read is described
/// all the same: its jobs will tell why.
FileChoiceResult describeChoice(const FileChoice &choice);

/// Filter of the file dialog in \a photoMode.
QString sourceFilter(int photoMode);
