#include "demo/wirepaths.h"

#include <utility>

namespace demo {

WirePaths::WirePaths(QString prefix) : prefix_(std::move(prefix))
{
}

QString WirePaths::toWire(const QString &absoluteDiskPath) const
{
    QString path = absoluteDiskPath;
    path.replace(QLatin1Char('/'), QLatin1Char('\\'));
    return prefix_ + path;
}

QString WirePaths::toDisk(const QString &wirePath) const
{
    QString path = wirePath;
    if (!prefix_.isEmpty() && path.startsWith(prefix_, Qt::CaseInsensitive))
        path.remove(0, prefix_.size());
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return path;
}

} // namespace demo
