#include "platform/ownfile.h"

namespace platform {

bool closeToOthers(const QString &path)
{
    Q_UNUSED(path)
    return true;
}

} // namespace platform
