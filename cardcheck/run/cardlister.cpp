#include "cardcheck/run/cardlister.h"

#include "files/paths.h"
#include "platform/folderlisting.h"
#include "platform/pathform.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace cardlister {

using platform::EntryKind;
using platform::FolderEntry;
using platform::FolderListing;

namespace {

constexpr int deepest = 32; ///< folders in each other; no camera comes near

class CardWalk
{
public:
    CardWalk(const QString &root, const StopFlag &stop) : stop_(stop) { listing_.root = root; }

    cardfiles::CardListing walk()
    {
        listing_.isListed = list(QString(), 0);
        if (!listing_.isListed || stop_.isRaised())
            return {listing_.root, false, {}, {}};
        std::sort(listing_.files.begin(), listing_.files.end(),
                  [](const auto &one, const auto &other) { return one.shown < other.shown; });
        listing_.unlisted.sort();
        return listing_;
    }

private:
    /// \a below: the folder from the root on, empty for that. False when it could not be listed.
    bool list(const QString &below, int depth)
    {
        if (stop_.isRaised())
            return false;
        const QString folder =
            below.isEmpty() ? QDir::cleanPath(listing_.root) : joinLocalPath(listing_.root, below);
        QStringList folders;
        const auto visit = [&](const FolderEntry &entry) {
            const QString shown = below.isEmpty() ? entry.name : joinLocalPath(below, entry.name);
            if (entry.kind == EntryKind::File)
                addFile(folder, shown, entry);
            else if (entry.kind == EntryKind::Folder && depth < deepest)
                folders.append(shown);
            else if (entry.kind != EntryKind::Other)
                listing_.unlisted.append(shown);
            return !stop_.isRaised();
        };
        if (platform::listFolder(folder, visit) != FolderListing::Done)
            return false;
        for (const QString &each : qAsConst(folders)) {
            if (depth == 0 && cardfiles::isSystemFolder(each))
                continue;
            if (!list(each, depth + 1))
                listing_.unlisted.append(each);
        }
        return true;
    }

    void addFile(const QString &folder, const QString &shown, const FolderEntry &entry)
    {
        const QString path = joinLocalPath(folder, entry.name);
        listing_.files.append({path, shown, entry.size,
                               QFileInfo(path).lastModified().toMSecsSinceEpoch(),
                               cardfiles::kindOf(entry.name)});
    }

    const StopFlag stop_;
    cardfiles::CardListing listing_;
};

class OrderWalk
{
public:
    explicit OrderWalk(const StopFlag &stop) : stop_(stop) {}

    FolderFiles walk(const QString &folder)
    {
        found_.isListed = list(folder, 0);
        std::sort(found_.files.begin(), found_.files.end(),
                  [](const auto &one, const auto &other) { return one.path < other.path; });
        return found_;
    }

private:
    bool list(const QString &folder, int depth)
    {
        QStringList folders;
        const auto visit = [&](const FolderEntry &entry) {
            const QString path = joinWirePath(folder, entry.name);
            if (entry.kind == EntryKind::File && !entry.name.startsWith(QLatin1String("~$")))
                found_.files.append({path, entry.size});
            else if (entry.kind == EntryKind::Folder && !isVariants(entry.name))
                folders.append(path);
            return !stop_.isRaised();
        };
        const FolderListing ending = platform::listFolder(platform::toLocalPath(folder), visit);
        if (depth == 0)
            found_.isThere = ending != FolderListing::Missing;
        bool whole = ending == FolderListing::Done;
        for (const QString &each : qAsConst(folders))
            whole = depth < deepest && list(each, depth + 1) && whole;
        return whole;
    }

    static bool isVariants(const QString &name)
    {
        static const QStringList variants{QStringLiteral("90"), QStringLiteral("190"),
                                          QStringLiteral("1920")};
        return variants.contains(name);
    }

    const StopFlag stop_;
    FolderFiles found_;
};

} // namespace

cardfiles::CardListing listCard(const QString &root, const StopFlag &stop)
{
    return CardWalk(root, stop).walk();
}

bool isCamerasCard(const QString &root)
{
    bool found = false;
    platform::listFolder(root, [&found](const FolderEntry &entry) {
        found = entry.kind == EntryKind::Folder && cardfiles::isCameraFolder(entry.name);
        return !found;
    });
    return found;
}

CardPlace::CardPlace(const QString &root) : identity_(platform::folderIdentity(root))
{
}

bool CardPlace::holds(const QString &path) const
{
    if (identity_.isEmpty())
        return false;
    for (QString folder = QFileInfo(path).path();;) {
        if (platform::folderIdentity(folder) == identity_)
            return true;
        const QString above = QFileInfo(folder).path();
        if (above == folder)
            return false;
        folder = above;
    }
}

FolderFiles listOrderFolder(const QString &folder, const StopFlag &stop)
{
    return OrderWalk(stop).walk(folder);
}

} // namespace cardlister
