#include "batchdelete/run/emptiedfolder.h"

#include "batchdelete/rules/deletionrules.h"
#include "platform/drives.h"
#include "platform/folderlisting.h"

#include <QFileInfo>

namespace emptiedfolder {

QByteArray holderOf(const QString &netPath)
{
    return platform::folderIdentity(QFileInfo(deletionrules::localFolder(netPath)).path());
}

Look lookFor(const QString &netPath, const QByteArray &holder)
{
    const QString folder = deletionrules::localFolder(netPath);
    if (QFileInfo(folder).isDir())
        return {State::There, {}};
    if (!holder.isEmpty() && holderOf(netPath) == holder)
        return {State::Removed, {}};
    const bool isRemote = folder.startsWith(QLatin1String("//")) || platform::isRemoteDrive(folder);
    return {State::Unreachable, isRemote ? unreachableText() : QStringLiteral("订单目录无法访问")};
}

QString unreachableText()
{
    return QStringLiteral("网络路径无法访问");
}

} // namespace emptiedfolder
