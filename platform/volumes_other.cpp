#include "platform/volumes.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

namespace platform {

namespace {

/// The serial number that the system has noted of \a device: the name of a link to it.
QString serialOf(const QString &device)
{
    const QString target = QFileInfo(device).canonicalFilePath();
    const QFileInfoList links =
        QDir(QStringLiteral("/dev/disk/by-uuid")).entryInfoList(QDir::Files | QDir::System);
    for (const QFileInfo &link : links) {
        if (!target.isEmpty() && link.canonicalFilePath() == target)
            return link.fileName();
    }
    return {};
}

} // namespace

VolumeName volumeNameOf(const QString &path)
{
    const QStorageInfo volume(path);
    if (!volume.isValid())
        return {};
    const QString device = QString::fromLocal8Bit(volume.device());
    VolumeName name{volume.name(), serialOf(device)};
    // A share has neither; what it is mounted from names it.
    const bool isShare =
        device.contains(QLatin1String(":/")) || device.startsWith(QLatin1String("//"));
    if (name.label.isEmpty() && isShare)
        name.label = device;
    return name;
}

} // namespace platform
