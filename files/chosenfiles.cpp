#include "files/chosenfiles.h"

#include "files/paths.h"
#include "platform/folderlisting.h"

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <numeric>

namespace chosenfiles {

namespace {

QStringList firstPatterns(const QString &dialogFilter)
{
    const QString filter = dialogFilter.section(QStringLiteral(";;"), 0, 0);
    const int open = filter.indexOf(QLatin1Char('('));
    return filter.mid(open + 1, filter.indexOf(QLatin1Char(')')) - open - 1)
        .split(QLatin1Char(' '));
}

/// What is mounted in a folder belongs to it; what a link or junction leads to does not.
bool isFolderBelow(platform::EntryKind kind, const QString &path)
{
    return kind == platform::EntryKind::Folder ||
           (kind == platform::EntryKind::FolderLink && platform::isMountPoint(path));
}

} // namespace

QString kindOf(const QString &fileName)
{
    const QString suffix = QFileInfo(fileName).suffix();
    return suffix.isEmpty() ? QStringLiteral("无扩展名") : QLatin1Char('.') + suffix;
}

QString hiddenKind()
{
    return QStringLiteral("隐藏文件");
}

QString kindsText(const Kinds &kinds)
{
    QStringList names = kinds.keys();
    std::stable_sort(names.begin(), names.end(),
                     [&kinds](const QString &one, const QString &other) {
                         return kinds.value(one) > kinds.value(other);
                     });
    for (QString &name : names)
        name = QStringLiteral("%1 %2 个").arg(name).arg(kinds.value(name));
    return names.join(QStringLiteral("，"));
}

QString ignoredNotice(const Kinds &ignored)
{
    if (ignored.isEmpty())
        return {};
    return QStringLiteral("已忽略 %1 个不支持的文件：%2")
        .arg(std::accumulate(ignored.cbegin(), ignored.cend(), 0))
        .arg(kindsText(ignored));
}

DropContents expandDrop(const QStringList &paths, const QString &dialogFilter)
{
    const QStringList patterns = firstPatterns(dialogFilter);
    DropContents contents;
    const auto consider = [&](const QString &path) {
        if (QDir::match(patterns, path.mid(path.lastIndexOf(QLatin1Char('/')) + 1)))
            contents.files.append(path);
        else
            ++contents.ignored[kindOf(path).toLower()];
    };
    const auto hide = [&](const platform::FolderEntry &entry) {
        if (entry.kind == platform::EntryKind::File && QDir::match(patterns, entry.name))
            ++contents.ignored[hiddenKind()];
    };
    QStringList folders;
    for (const QString &path : paths) {
        if (QFileInfo(path).isDir())
            folders.append(path);
        else
            consider(path);
    }
    while (!folders.isEmpty()) {
        const QString folder = folders.takeLast();
        const auto sort = [&](const platform::FolderEntry &entry) {
            const QString path = joinLocalPath(folder, entry.name);
            if (entry.kind == platform::EntryKind::Unnameable)
                contents.unreadable.append(path);
            else if (entry.isHidden)
                hide(entry);
            else if (isFolderBelow(entry.kind, path))
                folders.append(path);
            else if (entry.kind == platform::EntryKind::File)
                consider(path);
            return true;
        };
        if (platform::listFolder(folder, sort) != platform::FolderListing::Done)
            contents.unreadable.append(folder);
    }
    QCollator byName(QLocale(QLocale::Chinese, QLocale::China)); // whatever the machine is set to
    byName.setNumericMode(true);
    std::sort(contents.files.begin(), contents.files.end(), byName);
    contents.files.removeDuplicates();
    contents.unreadable.removeDuplicates();
    std::sort(contents.unreadable.begin(), contents.unreadable.end(), byName);
    return contents;
}

QString unreadableHeading()
{
    return QStringLiteral("下列文件夹无法读取，其中的文件不会被导入，确认要继续吗？");
}

QVector<QStringList> sameTargetGroups(const QVector<Placement> &placements)
{
    QHash<QString, QStringList> sources;
    QStringList targetsInOrder;
    for (const Placement &placement : placements) {
        const QString target = wirePathKey(placement.target);
        QStringList &group = sources[target];
        if (group.isEmpty())
            targetsInOrder.append(target);
        group.append(placement.source);
    }
    QVector<QStringList> groups;
    for (const QString &target : qAsConst(targetsInOrder)) {
        if (sources.value(target).size() > 1)
            groups.append(sources.value(target));
    }
    return groups;
}

QString sameTargetNotice(const QVector<QStringList> &groups)
{
    QString notice =
        QStringLiteral("下列文件导入后文件名相同，会互相覆盖。请去掉多余的文件后重新选择：");
    for (const QStringList &group : groups)
        notice += QStringLiteral("\n\n") + group.join(QLatin1Char('\n'));
    return notice;
}

} // namespace chosenfiles
