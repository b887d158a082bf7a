#include "orderbrowser/run/folderlook.h"

#include "files/pathgate.h"
#include "platform/folderlisting.h"
#include "platform/pathform.h"
#include "tasks/background.h"

#include <algorithm>

namespace {

using State = FolderContent::State;
using Part = FolderContent::Part;

/// No order's files lie deeper; what is linked in circles ends here as well.
constexpr int deepest = 16;

State stateOf(platform::FolderListing listing)
{
    switch (listing) {
    case platform::FolderListing::Done:
    case platform::FolderListing::Stopped:
        return State::There;
    case platform::FolderListing::Missing:
        return State::Missing;
    case platform::FolderListing::Denied:
        return State::Denied;
    case platform::FolderListing::Failed:
        break;
    }
    return State::Failed;
}

/// Adds the files in \a folder and below; what a link leads to lies elsewhere.
void count(const QString &folder, const StopFlag &stop, int depth, Part *part)
{
    QStringList below;
    platform::listFolder(folder, [&](const platform::FolderEntry &entry) {
        if (entry.kind == platform::EntryKind::Folder) {
            below.append(entry.name);
        } else if (entry.kind == platform::EntryKind::File) {
            ++part->files;
            part->bytes += entry.size;
        }
        return !stop.isRaised();
    });
    for (const QString &name : qAsConst(below)) {
        if (depth < deepest && !stop.isRaised())
            count(folder + QLatin1Char('/') + name, stop, depth + 1, part);
    }
}

FolderContent contentOf(const QString &path, const StopFlag &stop)
{
    FolderContent content;
    Part beside;
    QStringList folders;
    const auto listing = platform::listFolder(path, [&](const platform::FolderEntry &entry) {
        if (entry.kind == platform::EntryKind::Folder) {
            folders.append(entry.name);
        } else if (entry.kind == platform::EntryKind::File) {
            ++beside.files;
            beside.bytes += entry.size;
        }
        return !stop.isRaised();
    });
    content.state = stateOf(listing);
    if (beside.files > 0)
        content.parts.append(beside);
    std::sort(folders.begin(), folders.end());
    for (const QString &name : qAsConst(folders)) {
        Part part{name, 0, 0};
        if (!stop.isRaised())
            count(path + QLatin1Char('/') + name, stop, 0, &part);
        content.parts.append(part);
    }
    return content;
}

} // namespace

FolderLook::FolderLook(QObject *parent, int limitMs) : QObject(parent)
{
    limit_.setSingleShot(true);
    limit_.setInterval(limitMs);
    connect(&limit_, &QTimer::timeout, this, [this] {
        cancel();
        emit found({State::TimedOut, {}});
    });
}

FolderLook::~FolderLook()
{
    cancel();
}

void FolderLook::look(const QString &path)
{
    cancel();
    if (pathgate::flawOf(path) != pathgate::Flaw::None) {
        emit found({State::Refused, {}});
        return;
    }
    stop_ = StopFlag();
    limit_.start();
    onDisk(
        this, path,
        [local = platform::toLocalPath(path), stop = stop_] { return contentOf(local, stop); },
        latest_.only([this](const FolderContent &content) {
            limit_.stop();
            emit found(content);
        }));
}

void FolderLook::cancel()
{
    stop_.raise();
    latest_.abandon();
    limit_.stop();
}
