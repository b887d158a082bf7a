#include "photoimport/orders/sourcefile.h"

#include "files/safename.h"
#include "photoimport/rules/photorules.h"

#include <QFileInfo>

#include <algorithm>

void SourceJob::report(bool success, const QString &errorMsg)
{
    state = success ? JobState::Done : failure.hopeless ? JobState::Impossible : JobState::Failed;
    message = errorMsg;
    if (success)
        failure = {};
}

int SourceFile::countOf(JobState state) const
{
    return int(std::count_if(jobs.cbegin(), jobs.cend(),
                             [state](const SourceJob &job) { return job.state == state; }));
}

bool SourceFile::isUnfinished() const
{
    return !isComplete() || registration == RegistrationState::Pending ||
           registration == RegistrationState::Refused;
}

bool SourceFile::isComplete() const
{
    return std::all_of(jobs.cbegin(), jobs.cend(),
                       [](const SourceJob &job) { return job.isSettled(); });
}

QString SourceFile::failureText() const
{
    const QString ofVariant = photorules::compressionFailure({}).chopped(1); // up to its size
    QStringList texts;
    QStringList sizes;
    for (const SourceJob &job : jobs) {
        if (job.state != JobState::Failed)
            continue;
        if (job.message.startsWith(ofVariant))
            sizes.append(job.message.mid(ofVariant.size()).chopped(1));
        else if (!texts.contains(job.message))
            texts.append(job.message);
    }
    if (!sizes.isEmpty())
        texts.append(photorules::compressionFailure(sizes.join(QStringLiteral("、"))));
    if (registration == RegistrationState::Refused)
        texts.append(QStringLiteral("登记失败: ") + refusal);
    return texts.join(QStringLiteral("；"));
}

QStringList SourceFile::failureReasons() const
{
    QStringList reasons;
    for (const SourceJob &job : jobs) {
        if (job.state == JobState::Failed && !job.failure.reason.isEmpty() &&
            !reasons.contains(job.failure.reason))
            reasons.append(job.failure.reason);
    }
    return reasons;
}

QString SourceFile::wholeFailure() const
{
    QStringList lines{failureText()};
    lines += failureReasons();
    lines.removeAll(QString());
    return lines.join(QLatin1Char('\n'));
}

FilesSummary summarise(const QVector<SourceFile> &files)
{
    FilesSummary summary;
    summary.files = files.size();
    for (const SourceFile &file : files) {
        const int waiting = file.countOf(JobState::Waiting);
        const int jobs = std::max(1, file.jobs.size());
        summary.complete += file.isComplete() ? 1 : 0;
        summary.failed += file.hasFailed() ? 1 : 0;
        summary.reported += waiting == 0 ? 1 : 0;
        summary.unregistered += file.registration == RegistrationState::Refused ? 1 : 0;
        summary.withoutVariants += file.hasImpossible() ? 1 : 0;
        summary.bytes += file.size;
        summary.bytesReported += file.size * (jobs - waiting) / jobs;
    }
    return summary;
}

FilesToRetry filesToRetry(const QVector<SourceFile> &files, const QSet<int> &indexes)
{
    FilesToRetry retry;
    for (int index = 0; index < files.size(); ++index) {
        if (!indexes.isEmpty() && !indexes.contains(index))
            continue;
        if (files.at(index).hasFailed())
            retry.failed.append(index);
        if (files.at(index).registration == RegistrationState::Refused)
            retry.unregistered.append(index);
    }
    return retry;
}

QString sourceFilter(PhotoMode photoMode)
{
    if (photoMode == PhotoMode::Photos)
        return QStringLiteral("图片文件 (*.jpg *.jpeg *.png *.bmp);;所有文件 (*.*)");
    return QStringLiteral("视频文件 (*.mp4 *.mov *.m4v *.avi *.mkv *.wmv *.flv *.mpg *.mpeg *.mts "
                          "*.webm *.3gp);;所有文件 (*.*)");
}

QVector<SourceJob> waitingJobs(PhotoMode photoMode)
{
    // Which jobs there are depends on the mode alone; their sizes are the order's.
    QVector<SourceJob> jobs;
    const auto forms = photorules::jobsFor({}, {QStringLiteral("x")}, photoMode);
    for (const PhotoInfo &form : forms)
        jobs.append({form.kind});
    return jobs;
}

FileChoiceResult describeChoice(const FileChoice &choice)
{
    FileChoiceResult result;
    chosenfiles::DropContents dropped;
    if (choice.expand)
        dropped = chosenfiles::expandDrop(choice.paths, sourceFilter(choice.photoMode));
    result.ignored = dropped.ignored;
    result.unreadable = dropped.unreadable;
    const QStringList &paths = choice.expand ? dropped.files : choice.paths;
    QSet<QString> known;
    QVector<chosenfiles::Placement> placements;
    for (const SourceFile &file : choice.listed) {
        known.insert(file.path);
        placements.append({file.path, safeFileName(file.name)});
    }
    const QVector<SourceJob> jobs = waitingJobs(choice.photoMode);
    for (const QString &path : paths) {
        const QFileInfo info(path);
        const QString absolute = info.absoluteFilePath();
        if (known.contains(absolute)) {
            ++result.repeated;
            continue;
        }
        known.insert(absolute);
        SourceFile file;
        file.path = absolute;
        file.name = info.fileName();
        file.size = info.size();
        file.jobs = jobs;
        placements.append({file.path, safeFileName(file.name)});
        result.files.append(file);
    }
    result.clashes = chosenfiles::sameTargetGroups(placements);
    return result;
}
