#include "platform/pathform.h"

namespace platform {

namespace {

QString volumeOf(const QString &path)
{
    const QString wire = QString(path).replace(QLatin1Char('/'), QLatin1Char('\\'));
    if (wire.startsWith(QLatin1String("\\\\"))) {
        const QStringList components = wire.split(QLatin1Char('\\'), Qt::SkipEmptyParts);
        return QLatin1String("\\\\") + components.mid(0, 2).join(QLatin1Char('\\')).toCaseFolded();
    }
    return wire.size() > 1 && wire.at(1) == QLatin1Char(':') ? wire.left(2).toCaseFolded()
                                                             : QString();
}

} // namespace

QString toLocalPath(const QString &wirePath)
{
    return wirePath;
}

namespace {

constexpr int longestName = 255; // UTF-16 units

} // namespace

bool nameFits(const QString &name)
{
    return name.size() <= longestName;
}

bool isHiddenName(const QString &)
{
    return false; // a mark of the file decides
}

QString fittingStart(const QString &base, const QString &tail)
{
    int end = qBound(0, longestName - tail.size(), base.size());
    if (end > 0 && end < base.size() && base.at(end - 1).isHighSurrogate())
        --end;
    return base.left(end);
}

std::optional<QStringList> componentsBelowRoot(const QString &wirePath)
{
    const QString path = QString(wirePath).replace(QLatin1Char('/'), QLatin1Char('\\'));
    const QStringList components = path.split(QLatin1Char('\\'), Qt::SkipEmptyParts);
    if (path.startsWith(QLatin1String("\\\\"))) {
        constexpr int hostAndShare = 2;
        const QString host = components.value(0);
        const bool isDevice = host == QLatin1String("?") || host == QLatin1String(".");
        if (isDevice || components.size() < hostAndShare)
            return std::nullopt;
        return components.mid(hostAndShare);
    }
    const bool hasDrive = path.size() > 2 && path.at(0).isLetter() &&
                          path.at(1) == QLatin1Char(':') && path.at(2) == QLatin1Char('\\');
    if (!hasDrive)
        return std::nullopt;
    return components.mid(1);
}

QStringList volumesOf(const QStringList &paths)
{
    QStringList volumes;
    for (const QString &path : paths) {
        const QString volume = volumeOf(path);
        if (!volumes.contains(volume))
            volumes.append(volume);
    }
    return volumes;
}

} // namespace platform
