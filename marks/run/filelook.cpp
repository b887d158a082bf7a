#include "marks/run/filelook.h"

#include "files/paths.h"
#include "platform/folderlisting.h"
#include "platform/pathform.h"

#include <QFileInfo>

namespace marks {

namespace {

/// False when nothing can be told; of a folder that is not there it is that nothing stands in it.
/// \a keyOf makes a key of a name.
template <typename KeyOf>
bool list(const QString &folder, const StopFlag &stop, KeyOf keyOf, Listing *listing)
{
    const auto take = [&](const platform::FolderEntry &entry) {
        if (entry.kind == platform::EntryKind::File) {
            listing->insert(keyOf(entry.name), {joinLocalPath(folder, entry.name), entry.size,
                                                platform::msOf(entry.modified)});
        }
        return !stop.isRaised();
    };
    const platform::FolderListing result = platform::listFolder(folder, take);
    return result == platform::FolderListing::Done || result == platform::FolderListing::Missing;
}

void lookAtSources(QVector<ChosenFile> *files, const StopFlag &stop)
{
    // Where names are told apart by case, so are the sources.
    const auto itself = [](const QString &name) { return name; };
    QHash<QString, Listing> listings;
    for (ChosenFile &file : *files) {
        const QFileInfo source(file.source); // looks at nothing
        const QString folder = source.path();
        if (!listings.contains(folder))
            list(folder, stop, itself, &listings[folder]);
        const Listing &listing = listings[folder];
        const auto found = listing.constFind(source.fileName());
        file.size = found == listing.cend() ? -1 : found->size;
        file.modified = found == listing.cend() ? 0 : found->modified;
    }
}

} // namespace

DiskFacts lookAtDisks(QVector<ChosenFile> files, const QStringList &folders, const StopFlag &stop)
{
    DiskFacts facts;
    lookAtSources(&files, stop);
    facts.files = files;
    for (const QString &folder : folders) {
        const QString key = wirePathKey(folder);
        if (!list(platform::toLocalPath(folder), stop, renaming::nameKey, &facts.targets[key]))
            facts.unlisted.append(key);
    }
    return facts;
}

std::optional<StandingFile> standingAt(const DiskFacts &facts, const QString &target)
{
    const int nameAt = target.lastIndexOf(QLatin1Char('\\')) + 1;
    const Listing listing = facts.targets.value(wirePathKey(target.left(nameAt - 1)));
    const auto found = listing.constFind(renaming::nameKey(target.mid(nameAt)));
    return found == listing.cend() ? std::nullopt : std::make_optional(*found);
}

NewNames findNewNames(const QVector<RenameRequest> &requests)
{
    NewNames found;
    for (const RenameRequest &request : requests) {
        QStringList names;
        const auto take = [&names](const platform::FolderEntry &entry) {
            names.append(entry.name);
            return true;
        };
        for (const QString &folder : request.folders) {
            const auto result = platform::listFolder(platform::toLocalPath(folder), take);
            if (result != platform::FolderListing::Done &&
                result != platform::FolderListing::Missing) {
                found.names.clear();
                found.unreadable = folder;
                return found;
            }
        }
        found.names.insert(request.order, renaming::renamed(request.files, request.sources,
                                                            renaming::takenBases(names)));
    }
    return found;
}

QString unreadableText(const QString &folder)
{
    return QStringLiteral("目录无法读取，不能确定哪些文件名可用，没有改名: %1").arg(folder);
}

} // namespace marks
