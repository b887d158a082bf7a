#include "platform/pathform.h"

#include <QFile>

namespace platform {

namespace {

/// Where file systems are mounted, each with a slash at its end; nothing where the system has no
/// such list. The kernel writes it without asking any disk.
QStringList mountedPlaces()
{
    constexpr int placeField = 4;
    QFile list(QStringLiteral("/proc/self/mountinfo"));
    if (!list.open(QIODevice::ReadOnly))
        return {};
    QStringList places;
    const QList<QByteArray> lines = list.readAll().split('\n');
    for (const QByteArray &line : lines) {
        QByteArray place = line.split(' ').value(placeField);
        place.replace("\\040", " ");
        if (!place.isEmpty())
            places.append(QFile::decodeName(place) + QLatin1Char('/'));
    }
    return places;
}

QString volumeOf(const QString &path, const QStringList &mounted)
{
    if (path.startsWith(QLatin1String("//"))) {
        const QStringList components = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        return QLatin1String("//") + components.mid(0, 2).join(QLatin1Char('/')).toCaseFolded();
    }
    if (!path.startsWith(QLatin1Char('/')))
        return {};
    QString longest(QLatin1Char('/'));
    for (const QString &place : mounted) {
        if (place.size() > longest.size() && (path + QLatin1Char('/')).startsWith(place))
            longest = place;
    }
    return longest;
}

} // namespace

QString toLocalPath(const QString &wirePath)
{
    return QString(wirePath).replace(QLatin1Char('\\'), QLatin1Char('/'));
}

namespace {

constexpr int longestName = 255; // bytes

} // namespace

bool nameFits(const QString &name)
{
    return name.size() <= longestName && QFile::encodeName(name).size() <= longestName;
}

bool isHiddenName(const QString &name)
{
    return name.startsWith(QLatin1Char('.'));
}

QString fittingStart(const QString &base, const QString &tail)
{
    int bytesLeft = longestName - tail.toUtf8().size();
    int end = 0;
    while (end < base.size()) {
        const bool isPair = base.at(end).isHighSurrogate() && end + 1 < base.size();
        const int next = end + (isPair ? 2 : 1);
        bytesLeft -= base.midRef(end, next - end).toUtf8().size();
        if (bytesLeft < 0)
            break;
        end = next;
    }
    return base.left(end);
}

std::optional<QStringList> componentsBelowRoot(const QString &wirePath)
{
    const QString path = toLocalPath(wirePath);
    if (!path.startsWith(QLatin1Char('/')))
        return std::nullopt;
    const QStringList components = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    // A share is mounted under its name, and is no less a root for it.
    constexpr int hostAndShare = 2;
    return components.mid(path.startsWith(QLatin1String("//")) ? hostAndShare : 0);
}

QStringList volumesOf(const QStringList &paths)
{
    const QStringList mounted = mountedPlaces();
    QStringList volumes;
    for (const QString &path : paths) {
        const QString volume = volumeOf(toLocalPath(path), mounted);
        if (!volumes.contains(volume))
            volumes.append(volume);
    }
    return volumes;
}

} // namespace platform
