#include "platform/programfile.h"

#include <QFile>
#include <QFileInfo>

namespace platform {

QString programFolder()
{
    const QString file = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    return file.isEmpty() ? QString() : QFileInfo(file).path();
}

} // namespace platform
