#include "platform/fileaccess.h"
#include "platform/longpath_win.h"

#include <windows.h>

namespace platform {

bool mayBeWritten(const QString &path)
{
    const DWORD attributes = GetFileAttributesW(longPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           !(attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY));
}

bool mayBeRemoved(const QString &path)
{
    // Windows judges both by the same mark.
    return mayBeWritten(path);
}

} // namespace platform
