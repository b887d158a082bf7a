#include "platform/ownfile.h"

#include <QFile>

#include <sys/stat.h>

namespace platform {

bool closeToOthers(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    constexpr mode_t others = S_IRWXG | S_IRWXO;
    struct stat info
    {
    };
    if (stat(name.constData(), &info) != 0)
        return false;
    if ((info.st_mode & others) == 0)
        return true;
    // A disk that keeps no rights says yes and changes nothing.
    return chmod(name.constData(), info.st_mode & 07777 & ~others) == 0 &&
           stat(name.constData(), &info) == 0 && (info.st_mode & others) == 0;
}

} // namespace platform
