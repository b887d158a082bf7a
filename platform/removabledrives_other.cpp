#include "platform/removabledrives.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <algorithm>

namespace platform {

namespace {

/// As the kernel marks the disk on which the partition \a device lies.
bool isMarkedRemovable(const QString &device)
{
    const QString name = QFileInfo(QFileInfo(device).canonicalFilePath()).fileName();
    for (const QString &place : {QStringLiteral("/removable"), QStringLiteral("/../removable")}) {
        QFile mark(QStringLiteral("/sys/class/block/") + name + place);
        if (mark.open(QIODevice::ReadOnly))
            return mark.read(1) == "1";
    }
    return false;
}

/// Card readers do not all mark their cards; desktops put what is plugged in there.
bool isWherePluggedIn(const QString &root)
{
    return root.startsWith(QLatin1String("/media/")) ||
           root.startsWith(QLatin1String("/run/media/")) ||
           root.startsWith(QLatin1String("/Volumes/"));
}

} // namespace

QVector<RemovableDrive> removableDrives()
{
    QVector<RemovableDrive> drives;
    const auto volumes = QStorageInfo::mountedVolumes();
    for (const QStorageInfo &volume : volumes) {
        const QString device = QString::fromLocal8Bit(volume.device());
        if (volume.isValid() && volume.isReady() && !volume.isRoot() &&
            device.startsWith(QLatin1Char('/')) &&
            (isWherePluggedIn(volume.rootPath()) || isMarkedRemovable(device)))
            drives.append({volume.rootPath(), volume.name(), volume.bytesTotal()});
    }
    std::sort(drives.begin(), drives.end(),
              [](const auto &one, const auto &other) { return one.root < other.root; });
    return drives;
}

} // namespace platform
