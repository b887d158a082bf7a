#include "platform/folderopening.h"

#include <QDir>

namespace platform {

Command folderCommand(const QString &path)
{
    return {QStringLiteral("explorer.exe"), {QDir::toNativeSeparators(path)}};
}

Command pingCommand(const QString &host, int timeoutMs)
{
    return {QStringLiteral("ping"),
            {QStringLiteral("-n"), QStringLiteral("1"), QStringLiteral("-w"),
             QString::number(timeoutMs), host}};
}

} // namespace platform
