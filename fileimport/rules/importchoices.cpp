#include "fileimport/rules/importchoices.h"

#include "fileimport/rules/importrules.h"
#include "files/paths.h"

#include <QFileInfo>

namespace importchoices {

QVector<marks::Choice> choicesOf(const QVector<ImportOrder> &orders, ImportMode mode)
{
    QVector<marks::Choice> choices;
    for (const ImportOrder &order : orders) {
        if (!order.hasUnfinishedFile())
            continue;
        marks::Choice choice;
        choice.order = order.identity();
        choice.orderNumber = order.displayNumber();
        choice.folders = foldersOf(order, mode);
        choice.shotDate = order.shotDateText;
        choice.fileWord = QStringLiteral("照片");
        // A retouched photo's file is as old as the retouching.
        choice.fileTime =
            mode == ImportMode::Originals ? marks::FileTime::Counts : marks::FileTime::IsNone;
        for (const ImportFile &file : order.files) {
            if (file.state != ImportFile::Imported)
                choice.files.append(
                    {file.sourcePath, joinWirePath(file.targetFolder, file.targetName())});
        }
        choices.append(choice);
    }
    return choices;
}

QStringList foldersOf(const ImportOrder &order, ImportMode mode)
{
    QStringList folders = importrules::subFolders(mode);
    for (QString &folder : folders)
        folder = joinWirePath(order.importPath, folder);
    return folders;
}

QVector<ImportFile> without(const QVector<ImportFile> &files, const QSet<QString> &sources)
{
    QVector<ImportFile> kept;
    for (ImportFile file : files) {
        if (file.state != ImportFile::Imported && sources.contains(file.sourcePath))
            continue;
        file.fileIndex = kept.size();
        kept.append(file);
    }
    return kept;
}

QVector<renaming::File> renamable(const QVector<ImportFile> &files)
{
    QVector<renaming::File> all;
    all.reserve(files.size());
    for (const ImportFile &file : files)
        all.append({file.sourcePath, file.fileName(), file.state != ImportFile::Imported});
    return all;
}

QVector<ImportFile> renamed(QVector<ImportFile> files, const QHash<QString, QString> &names)
{
    for (ImportFile &file : files) {
        const auto name = names.constFind(file.sourcePath);
        if (name == names.cend())
            continue;
        const QFileInfo parts(*name);
        file.baseName = parts.completeBaseName();
        file.suffix = parts.suffix();
    }
    return files;
}

} // namespace importchoices
