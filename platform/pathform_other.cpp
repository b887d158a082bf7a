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

} // namespace platform
