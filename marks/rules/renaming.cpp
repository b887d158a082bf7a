#include "marks/rules/renaming.h"

#include "files/safename.h"
#include "platform/pathform.h"

#include <algorithm>
#include <utility>

namespace renaming {

namespace {

QString folderOf(const QString &path)
{
    return path.left(path.lastIndexOf(QLatin1Char('/')));
}

QString withoutSuffix(const QString &name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? name.left(dot) : name;
}

struct Member
{
    int index;
    QString rest; ///< of its name, behind the base
};

/// Files that belong together, and what of their names they share.
struct Group
{
    QString base; ///< as the first of them writes it
    QVector<Member> members;
};

/// \a files by folder and base name. A side file may carry the whole name of the file that it
/// belongs to ("IMG_1.CR2.xmp").
QVector<Group> groupsOf(const QVector<File> &files)
{
    using Key = std::pair<QString, QString>;
    QHash<Key, QString> bases; ///< by folder and whole name
    for (const File &file : files)
        bases.insert({folderOf(file.source), nameKey(file.name)}, withoutSuffix(file.name));
    QHash<Key, int> positions;
    QVector<Group> groups;
    for (int index = 0; index < files.size(); ++index) {
        const File &file = files.at(index);
        const QString folder = folderOf(file.source);
        const QString own = withoutSuffix(file.name);
        const QString base = bases.contains({folder, nameKey(own)}) ? withoutSuffix(own) : own;
        const Key key(folder, nameKey(base));
        const int position = positions.value(key, groups.size());
        if (position == groups.size()) {
            positions.insert(key, position);
            groups.append({base, {}});
        }
        groups[position].members.append({index, file.name.mid(base.size())});
    }
    return groups;
}

/// The base that the group's names get, with the first number under which nothing is \a used.
QString freeBase(const Group &group, const QSet<QString> &used)
{
    const QString longestNumber = QStringLiteral("_000000");
    QString longestRest;
    for (const Member &member : group.members)
        longestRest = member.rest.size() > longestRest.size() ? member.rest : longestRest;
    // Cut before the number: a long name must not lose it, and all keep the same.
    const QString base =
        safeFileName(platform::fittingStart(group.base, longestNumber + longestRest));
    int number = 2; // the first one is the file that has the name
    QString free;
    do {
        free = QStringLiteral("%1_%2").arg(base).arg(number++);
    } while (used.contains(nameKey(free)));
    return free;
}

} // namespace

QString nameKey(const QString &name)
{
    return name.toCaseFolded();
}

QSet<QString> takenBases(const QStringList &names)
{
    QSet<QString> taken;
    for (const QString &name : names) {
        const QString base = withoutSuffix(name);
        taken.insert(nameKey(base));
        taken.insert(nameKey(withoutSuffix(base))); // "IMG_1.CR2.xmp" belongs to IMG_1
    }
    return taken;
}

QHash<QString, QString> renamed(const QVector<File> &files, const QSet<QString> &sources,
                                const QSet<QString> &taken)
{
    const QVector<Group> groups = groupsOf(files);
    QSet<QString> used = taken;
    for (const Group &group : groups)
        used.insert(nameKey(group.base));
    const auto isWanted = [&](const Member &member) {
        const File &file = files.at(member.index);
        return file.mayChange && sources.contains(file.source);
    };
    QHash<QString, QString> names;
    for (const Group &group : groups) {
        if (std::none_of(group.members.cbegin(), group.members.cend(), isWanted))
            continue;
        const QString base = freeBase(group, used);
        used.insert(nameKey(base));
        for (const Member &member : group.members) {
            if (files.at(member.index).mayChange)
                names.insert(files.at(member.index).source, base + member.rest);
        }
    }
    return names;
}

QSet<QString> laterOnes(const QVector<QStringList> &clashes)
{
    QSet<QString> later;
    for (const QStringList &clash : clashes) {
        for (int index = 1; index < clash.size(); ++index)
            later.insert(clash.at(index));
    }
    return later;
}

} // namespace renaming
