// Names and paths from outside: what is made of them is one component and lies below its folder.
#include "distribution/naming/foldernames.h"
#include "files/pathgate.h"
#include "files/paths.h"
#include "files/safename.h"
#include "fuzz/harness.h"
#include "platform/pathform.h"

#include <QSet>

using fuzzing::isOneComponent;
using fuzzing::require;

namespace {

const QStringList &folders()
{
    static const QStringList some{QStringLiteral("D:\\import"), QStringLiteral("\\\\nas\\share"),
                                  QStringLiteral("\\\\nas\\share\\2024\\05\\"),
                                  QStringLiteral("/srv/import/")};
    return some;
}

void requireSafe(const QString &name)
{
    const QString safe = safeFileName(name);
    require(isOneComponent(safe), "a safe name is one component", name + QLatin1Char('\n') + safe);
    require(safeFileName(safe) == safe, "a safe name stays as it is", safe);
    require(safe == name || !isOneComponent(name) || isDeviceName(name),
            "a harmless name comes out unchanged", name);
    for (const QString &folder : folders()) {
        if (pathgate::flawOf(folder) != pathgate::Flaw::None)
            continue; // of the other system
        const QString wire = joinWirePath(folder, safe);
        require(pathgate::isBelow(wire, folder), "a file lies below its folder", wire);
        require(pathgate::levelsOf(wire).size() == pathgate::levelsOf(folder).size() + 1,
                "a name adds one level", wire);
        const QString local = platform::toLocalPath(folder);
        require(pathgate::isBelow(joinLocalPath(local, safe), local),
                "a file lies below its folder as this machine writes it", safe);
    }
}

/// All in one folder, on a disk that knows no case.
void requireDistinct(const QStringList &names)
{
    foldernames::DistinctNames distinct;
    QSet<QString> taken;
    for (const QString &name : names) {
        const QString given = distinct.take(name);
        require(isOneComponent(given), "a distinct name is one component", given);
        require(!taken.contains(given.toCaseFolded()), "a distinct name is nobody else's", given);
        taken.insert(given.toCaseFolded());
    }
}

void requireComposed(const QStringList &values)
{
    for (const QString &root : folders()) {
        const QString path = composeImportPath({
            {QStringLiteral("importPublicPath"), root},
            {QStringLiteral("shotdate_year"), values.value(0)},
            {QStringLiteral("shotdate_month"), values.value(1)},
            {QStringLiteral("shotdate_day"), values.value(2)},
            {QStringLiteral("orderNumber"), values.value(3)},
            {QStringLiteral("photoNum"), values.value(4)},
            {QStringLiteral("mname"), values.value(5)},
            {QStringLiteral("wname"), values.value(6)},
        });
        require(pathgate::flawOf(root) != pathgate::Flaw::None || pathgate::isBelow(path, root),
                "an order's folder lies below the root", path);
    }
    const ShootDate date = parseShootDate(values.value(0));
    require(date.month.size() > 1 && date.day.size() > 1, "a day has two digits", values.value(0));
}

/// A path that the gate takes holds nothing that a file system takes for the way up.
void requireGated(const QString &path)
{
    for (const QString &folder : folders()) {
        if (!pathgate::isBelow(path, folder))
            continue;
        QString whole = path;
        const QStringList levels = whole.replace(QLatin1Char('/'), QLatin1Char('\\'))
                                       .split(QLatin1Char('\\'), Qt::SkipEmptyParts);
        for (QString level : levels) {
            const bool isHere = level == QLatin1String(".");
            while (level.endsWith(QLatin1Char('.')) || level.endsWith(QLatin1Char(' ')))
                level.chop(1);
            require(isHere || !level.isEmpty(), "no level leads up", path);
        }
        require(!pathgate::isBelow(folder, path), "nothing lies below what lies below it", path);
        require(!pathgate::isBelow(path, path), "no path lies below itself", path);
    }
    const QString host = shareHostOf(path, QStringLiteral("https://studio.example/"));
    require(!host.contains(QLatin1Char('\\')) && !host.contains(QLatin1Char('/')),
            "a host is no path", host);
    require(!convertPathForService(path, host).contains(QLatin1Char('/')),
            "what the service gets has back slashes", path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QStringList lines = fuzzing::linesOf(data, size);
    requireSafe(fuzzing::textOf(data, size));
    requireSafe(fuzzing::wideTextOf(data, size));
    requireDistinct(lines);
    requireComposed(lines);
    requireGated(lines.constFirst());
    return 0;
}
