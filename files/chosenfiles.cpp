#include "files/chosenfiles.h"

#include "files/paths.h"

#include <QCollator>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>

#include <algorithm>

namespace chosenfiles {

namespace {

QStringList firstPatterns(const QString &dialogFilter)
{
    const QString filter = dialogFilter.section(QStringLiteral(";;"), 0, 0);
    const int open = filter.indexOf(QLatin1Char('('));
    return filter.mid(open + 1, filter.indexOf(QLatin1Char(')')) - open - 1)
        .split(QLatin1Char(' '));
}

} // namespace

bool matchesFilter(const QString &dialogFilter, const QString &fileName)
{
    return QDir::match(firstPatterns(dialogFilter), fileName);
}

QStringList expandDrop(const QStringList &paths, const QString &dialogFilter, int *ignored)
{
    const QStringList patterns = firstPatterns(dialogFilter);
    QStringList taken;
    const auto consider = [&](const QString &path) {
        if (QDir::match(patterns, QFileInfo(path).fileName()))
            taken.append(path);
        else
            ++*ignored;
    };
    for (const QString &path : paths) {
        if (!QFileInfo(path).isDir()) {
            consider(path);
            continue;
        }
        QDirIterator files(path, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext())
            consider(files.next());
    }
    QCollator byName(QLocale(QLocale::Chinese, QLocale::China)); // whatever the machine is set to
    byName.setNumericMode(true);
    std::sort(taken.begin(), taken.end(), byName);
    taken.removeDuplicates();
    return taken;
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
