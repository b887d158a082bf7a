#include "tests/support/smalldisk.h"

#include <QDir>
#include <QFile>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#endif

SmallDisk::SmallDisk(const QString &mountPoint, int megabytes) : mountPoint_(mountPoint)
{
    QDir().mkpath(mountPoint);
#ifdef Q_OS_LINUX
    const QByteArray options = QByteArrayLiteral("size=") + QByteArray::number(megabytes) + 'm';
    mounted_ = mount("tmpfs", QFile::encodeName(mountPoint).constData(), "tmpfs", 0,
                     options.constData()) == 0;
#else
    Q_UNUSED(megabytes)
#endif
}

SmallDisk::SmallDisk(const QString &mountPoint, const QString &shown) : mountPoint_(mountPoint)
{
    QDir().mkpath(mountPoint);
#ifdef Q_OS_LINUX
    mounted_ = mount(QFile::encodeName(shown).constData(),
                     QFile::encodeName(mountPoint).constData(), nullptr, MS_BIND, nullptr) == 0;
#else
    Q_UNUSED(shown)
#endif
}

SmallDisk::~SmallDisk()
{
    vanish();
}

void SmallDisk::vanish()
{
#ifdef Q_OS_LINUX
    if (mounted_)
        umount2(QFile::encodeName(mountPoint_).constData(), MNT_DETACH);
#endif
    mounted_ = false;
}
