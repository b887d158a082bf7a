#include "photoimport/orders/photomarks.h"

#include "photoimport/rules/photorules.h"

namespace photomarks {

QVector<marks::Choice> choicesOf(const QVector<PhotoOrder> &orders, PhotoMode photoMode)
{
    QVector<marks::Choice> choices;
    for (const PhotoOrder &order : orders) {
        const FilesSummary &summary = order.summary(photoMode);
        const QString home = order.folder();
        if (summary.complete == summary.files || home.isEmpty())
            continue;
        PhotoInfo main;
        main.kind = photorules::mainKind(photoMode);
        marks::Choice choice;
        choice.order = order.identity();
        choice.orderNumber = order.displayNumber();
        choice.folders.append(photorules::targetFolderOf(home, main.kind));
        choice.shotDate = order.info.shotDateText;
        choice.fileWord =
            photoMode == PhotoMode::Photos ? QStringLiteral("照片") : QStringLiteral("视频");
        // A retouched video's file is as old as the retouching.
        choice.fileTime = photoMode == PhotoMode::Photos || photoMode == PhotoMode::TrialVideos
                              ? marks::FileTime::Counts
                              : marks::FileTime::IsNone;
        for (const SourceFile &file : order.files(photoMode)) {
            main.fileName = file.name;
            if (!file.isComplete())
                choice.files.append({file.path, photorules::outputPathOf(home, main)});
        }
        choices.append(choice);
    }
    return choices;
}

QStringList foldersOf(const PhotoOrder &order, PhotoMode photoMode)
{
    const auto forms = photorules::jobsFor(order.info, {QStringLiteral("x")}, photoMode);
    return photorules::foldersOf(order.folder(), forms).mid(1); // those below the order's own
}

QVector<renaming::File> renamable(const QVector<SourceFile> &files)
{
    QVector<renaming::File> all;
    all.reserve(files.size());
    for (const SourceFile &file : files)
        all.append({file.path, file.name, file.isUntouched()});
    return all;
}

QVector<SourceFile> renamed(QVector<SourceFile> files, const QHash<QString, QString> &names)
{
    for (SourceFile &file : files)
        file.name = names.value(file.path, file.name);
    return files;
}

QVector<int> unfinishedAmong(const QVector<SourceFile> &files, const QSet<QString> &sources)
{
    QVector<int> positions;
    for (int index = 0; index < files.size(); ++index) {
        if (!files.at(index).isComplete() && sources.contains(files.at(index).path))
            positions.append(index);
    }
    return positions;
}

} // namespace photomarks
