#include "platform/pathform.h"

#include <QFile>

namespace platform {

QString toLocalPath(const QString &wirePath)
{
    return QString(wirePath).replace(QLatin1Char('\\'), QLatin1Char('/'));
}

bool nameFits(const QString &name)
{
    constexpr int longestName = 255; // bytes
    return QFile::encodeName(name).size() <= longestName;
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

} // namespace platform
