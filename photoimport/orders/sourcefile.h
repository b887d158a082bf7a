#pragma once

#include "files/chosenfiles.h"
#include "photoimport/rules/photoimportrecords.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/// How one job of a source file ended.
enum class JobState {
    Waiting,
    Done,
    Failed,
    Impossible ///< no such form can be made of a file of this sort; as final as Done
};

/// One of the forms in which a source file is imported, see PhotoInfo::kind.
struct SourceJob
{
    QString kind = {};
    JobState state = JobState::Waiting;
    QString message = {};    ///< that it failed, as the worker words it
    JobFailure failure = {}; ///< what is known of why; there before the failure itself is

    void report(bool success, const QString &errorMsg);
    bool isSettled() const { return state == JobState::Done || state == JobState::Impossible; }
};

/// Whether the service knows of an imported file.
enum class RegistrationState { None, Pending, Registered, Refused };

/// One file chosen for an order, with the states of its jobs.
struct SourceFile
{
    QString path;    ///< absolute, as this machine writes it
    QString name;    ///< that it gets in its target folders; its own unless the user chose another
    qint64 size = 0; ///< bytes, when chosen
    QVector<SourceJob> jobs;
    RegistrationState registration = RegistrationState::None;
    QString refusal; ///< why the service did not take it

    int countOf(JobState state) const;
    bool isUntouched() const { return countOf(JobState::Waiting) == jobs.size(); }
    bool isComplete() const;
    bool hasFailed() const { return countOf(JobState::Failed) > 0; }
    bool hasImpossible() const { return countOf(JobState::Impossible) > 0; }
    /// Anything left to do: a job, or telling the service.
    bool isUnfinished() const;
    /// That jobs failed, and why the service refused; empty when all is well. One line.
    QString failureText() const;
    /// Why jobs failed, each reason once; empty when that is not known.
    QStringList failureReasons() const;
    /// failureText() and below it the reasons, a line each; empty when all is well.
    QString wholeFailure() const;
};

/// How far an order's files are, counted from their states.
struct FilesSummary
{
    int files = 0;
    int complete = 0;        ///< every job done
    int failed = 0;          ///< some job failed
    int reported = 0;        ///< no job waiting
    int unregistered = 0;    ///< refused by the service
    int withoutVariants = 0; ///< of a sort of which there are none
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
    PhotoMode photoMode = PhotoMode::Photos;
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

/// The jobs that a file has to go through in \a photoMode, none of them begun.
QVector<SourceJob> waitingJobs(PhotoMode photoMode);

/// Filter of the file dialog in \a photoMode.
QString sourceFilter(PhotoMode photoMode);
