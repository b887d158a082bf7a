#include "photoimport/orders/photoorder.h"

#include "files/paths.h"
#include "look/colours.h"
#include "photoimport/rules/photorules.h"

#include <QHash>

#include <algorithm>
#include <functional>

std::size_t PhotoOrder::modeIndex(PhotoMode photoMode)
{
    switch (photoMode) {
    case PhotoMode::Photos:
    case PhotoMode::TrialVideos:
    case PhotoMode::RetouchedVideos:
        return std::size_t(photoMode);
    case PhotoMode::Unknown:
        return std::size_t(PhotoMode::RetouchedVideos);
    }
    Q_UNREACHABLE();
}

void PhotoOrder::resummarise()
{
    std::transform(filesByMode.cbegin(), filesByMode.cend(), summaries.begin(), summarise);
}

QString PhotoOrder::displayNumber() const
{
    return info.serviceTimes.isEmpty() ? info.orderPayForKey
                                       : info.orderPayForKey + QLatin1Char('-') + info.serviceTimes;
}

QString PhotoOrder::customers() const
{
    QStringList names{info.mname, info.wname};
    names.removeAll(QString());
    return names.join(QLatin1Char(' '));
}

QString PhotoOrder::displayName() const
{
    return displayNumber() + QLatin1Char(' ') + customers();
}

QString PhotoOrder::folder() const
{
    return info.importPath.isEmpty() && info.importPublicPath.isEmpty()
               ? QString()
               : photorules::importFolderOf(info);
}

bool PhotoOrder::hasUnfinishedFiles() const
{
    return std::any_of(filesByMode.cbegin(), filesByMode.cend(), [](const auto &files) {
        return std::any_of(files.cbegin(), files.cend(),
                           [](const SourceFile &file) { return file.isUnfinished(); });
    });
}

void RunOutcome::add(const PhotoOrder &order, PhotoMode photoMode)
{
    const FilesSummary &summary = order.summary(photoMode);
    failed += summary.failed;
    unregistered += summary.unregistered + (order.folderRefusal.isEmpty() ? 0 : 1);
    withoutVariants += summary.withoutVariants;
    for (const SourceFile &file : order.files(photoMode)) {
        const QStringList all = file.failureReasons();
        for (const QString &reason : all)
            ++reasons[reason];
    }
}

QString RunOutcome::text() const
{
    QString text = isGood() ? QStringLiteral("导片完成！")
                            : QStringLiteral("导片结束，%1 个文件失败，%2 项未登记。")
                                  .arg(failed)
                                  .arg(unregistered);
    for (auto reason = reasons.cbegin(); reason != reasons.cend(); ++reason)
        text += QStringLiteral("\n%1: %2 个文件").arg(reason.key()).arg(reason.value());
    if (withoutVariants > 0)
        text += QStringLiteral("\n没有小图: %1 个文件（这类文件只导入原图）").arg(withoutVariants);
    if (!isGood())
        text += QStringLiteral("\n请在照片列表中查看原因，再点“重试失败”。");
    return text;
}

namespace photoorders {

/// The order with those of the jobs of its files at \a indexes that \a wanted picks.
static OrderInfo
withJobsThat(const PhotoOrder &order, PhotoMode photoMode, const QVector<int> &indexes,
             const std::function<bool(const SourceFile &, const PhotoInfo &)> &wanted)
{
    const QVector<SourceFile> &files = order.files(photoMode);
    QStringList sources;
    for (const int index : indexes)
        sources.append(files.at(index).path);
    OrderInfo picked = order.info;
    picked.photos.clear();
    const auto jobs = photorules::jobsFor(order.info, sources, photoMode);
    for (PhotoInfo job : jobs) {
        job.sourceIndex = indexes.value(job.sourceIndex);
        job.fileName = files.at(job.sourceIndex).name;
        if (wanted(files.at(job.sourceIndex), job))
            picked.photos.append(job);
    }
    return picked;
}

OrderInfo withJobs(const PhotoOrder &order, PhotoMode photoMode, const QVector<int> &indexes)
{
    QVector<int> all = indexes;
    for (int index = 0; indexes.isEmpty() && index < order.files(photoMode).size(); ++index)
        all.append(index);
    return withJobsThat(order, photoMode, all, [](const SourceFile &file, const PhotoInfo &job) {
        return std::none_of(file.jobs.cbegin(), file.jobs.cend(), [&](const SourceJob &state) {
            return state.kind == job.kind && state.isSettled();
        });
    });
}

OrderInfo withMainJobs(const PhotoOrder &order, PhotoMode photoMode, const QVector<int> &indexes)
{
    return withJobsThat(order, photoMode, indexes,
                        [kind = photorules::mainKind(photoMode)](
                            const SourceFile &, const PhotoInfo &job) { return job.kind == kind; });
}

QVector<FailedForms> failedForms(const PhotoOrder &order, PhotoMode photoMode)
{
    QVector<FailedForms> failed;
    for (const SourceFile &file : order.files(photoMode)) {
        const bool isImported =
            std::any_of(file.jobs.cbegin(), file.jobs.cend(),
                        [kind = photorules::mainKind(photoMode)](const SourceJob &job) {
                            return job.kind == kind && job.isSettled();
                        });
        if (isImported && file.hasFailed())
            failed.append({file.name, file.failureText()});
    }
    return failed;
}

QString sharedFoldersQuestion(const QVector<PhotoOrder> &orders, const QVector<int> &starting)
{
    QHash<QString, QStringList> byFolder;
    for (const PhotoOrder &order : orders) {
        if (!order.folder().isEmpty())
            byFolder[wirePathKey(order.folder())].append(order.displayName());
    }
    QString question;
    for (const int index : starting) {
        const QString folder = orders.at(index).folder();
        const QStringList sharing = byFolder.take(wirePathKey(folder));
        if (sharing.size() > 1)
            question += QStringLiteral("\n\n%1\n%2").arg(folder, sharing.join(QLatin1Char('\n')));
    }
    const QString head =
        QStringLiteral("下列订单的导片目录相同，照片会放进同一个文件夹，确认要继续吗？");
    return question.isEmpty() ? question : head + question;
}

QString nothingToImport(const QVector<PhotoOrder> &orders, PhotoMode photoMode)
{
    int files = 0;
    bool unregistered = false;
    for (const PhotoOrder &order : orders) {
        const FilesSummary &summary = order.summary(photoMode);
        if (summary.complete < summary.files)
            return {};
        files += summary.files;
        unregistered = unregistered || summary.unregistered > 0 || !order.folderRefusal.isEmpty();
    }
    if (files == 0)
        return QStringLiteral("请先为订单添加要导入的文件");
    return unregistered ? QStringLiteral("文件已全部导入，未登记的请点“重试失败”")
                        : QStringLiteral("文件已全部导入");
}

QString stateText(const PhotoOrder &order, PhotoMode photoMode)
{
    const FilesSummary &summary = order.summary(photoMode);
    if (order.run == PhotoOrder::Run::Queued)
        return QStringLiteral("等待导片");
    if (order.run == PhotoOrder::Run::Active)
        return QStringLiteral("导片中 %1/%2").arg(summary.reported).arg(summary.files);
    if (summary.files == 0)
        return QStringLiteral("未选择");
    if (summary.failed > 0)
        return QStringLiteral("成功:%1, 失败:%2").arg(summary.complete).arg(summary.failed);
    if (summary.unregistered > 0 || !order.folderRefusal.isEmpty())
        return summary.unregistered > 0 ? QStringLiteral("未登记:%1").arg(summary.unregistered)
                                        : QStringLiteral("目录未登记");
    if (summary.complete == summary.files && summary.withoutVariants > 0)
        return QStringLiteral("完成, 没有小图:%1").arg(summary.withoutVariants);
    if (summary.complete == summary.files)
        return QStringLiteral("导片完成");
    if (summary.reported > 0)
        return QStringLiteral("已停止 %1/%2").arg(summary.reported).arg(summary.files);
    return QStringLiteral("已选择");
}

unsigned int stateColour(const PhotoOrder &order, PhotoMode photoMode)
{
    const FilesSummary &summary = order.summary(photoMode);
    if (order.run != PhotoOrder::Run::Idle)
        return colours::inProgress;
    if (summary.files == 0)
        return colours::muted;
    if (summary.failed > 0 || summary.unregistered > 0 || !order.folderRefusal.isEmpty())
        return colours::failure;
    return summary.complete == summary.files ? colours::success : colours::chosen;
}

double progressShare(const PhotoOrder &order, PhotoMode photoMode)
{
    const FilesSummary &summary = order.summary(photoMode);
    if (summary.files == 0)
        return -1;
    return summary.bytes > 0 ? double(summary.bytesReported) / double(summary.bytes)
                             : double(summary.reported) / double(summary.files);
}

/// Files and, with its folder, the order itself that the service did not take.
static int unregisteredOf(const PhotoOrder &order, PhotoMode photoMode)
{
    return order.summary(photoMode).unregistered + (order.folderRefusal.isEmpty() ? 0 : 1);
}

QString progressText(const PhotoOrder &order, PhotoMode photoMode)
{
    const FilesSummary &summary = order.summary(photoMode);
    if (summary.files == 0)
        return {};
    if (summary.failed > 0)
        return QStringLiteral("失败 %1").arg(summary.failed);
    const int unregistered = unregisteredOf(order, photoMode);
    return unregistered > 0 ? QStringLiteral("未登记 %1").arg(unregistered)
                            : QStringLiteral("%1%").arg(int(progressShare(order, photoMode) * 100));
}

unsigned int progressColour(const PhotoOrder &order, PhotoMode photoMode)
{
    if (order.summary(photoMode).failed > 0 || unregisteredOf(order, photoMode) > 0)
        return colours::failure;
    return progressShare(order, photoMode) < 1 ? colours::accentHover : colours::success;
}

} // namespace photoorders
