#include "platform/programfile.h"

#include <QDir>

#include <string>
#include <windows.h>

namespace platform {

QString programFolder()
{
    constexpr size_t longestPath = 32768;
    std::wstring file(longestPath, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, file.data(), DWORD(file.size()));
    if (length == 0 || length == file.size())
        return {};
    const QString path = QDir::fromNativeSeparators(QString::fromWCharArray(file.data(), length));
    return path.left(path.lastIndexOf(QLatin1Char('/')));
}

} // namespace platform
