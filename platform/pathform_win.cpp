#include "platform/pathform.h"

namespace platform {

QString toLocalPath(const QString &wirePath)
{
    return wirePath;
}

bool nameFits(const QString &name)
{
    constexpr int longestName = 255; // UTF-16 units
    return name.size() <= longestName;
}

} // namespace platform
