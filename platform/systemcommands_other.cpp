#include "platform/systemcommands.h"

#include <QFileInfo>
#include <QtMath>

namespace platform {

Command folderCommand(const QString &path)
{
    return {QStringLiteral("xdg-open"), {path}};
}

bool isFolder(const QString &path)
{
    return QFileInfo(path).isDir();
}

Command pingCommand(const QString &host, int timeoutMs)
{
    // This ping counts in whole seconds.
    return {QStringLiteral("ping"),
            {QStringLiteral("-c"), QStringLiteral("1"), QStringLiteral("-W"),
             QString::number(qCeil(timeoutMs / 1000.0)), QStringLiteral("--"), host}};
}

QString textOf(const QByteArray &output)
{
    return QString::fromLocal8Bit(output);
}

} // namespace platform
