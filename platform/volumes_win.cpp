#include "platform/longpath_win.h"
#include "platform/volumes.h"

#include <array>
#include <windows.h>

namespace platform {

VolumeName volumeNameOf(const QString &path)
{
    const std::wstring name = longPath(path);
    std::wstring root(name.size() + 2, L'\0');
    if (!GetVolumePathNameW(name.c_str(), root.data(), DWORD(root.size())))
        return {};
    std::array<wchar_t, MAX_PATH + 1> label{};
    DWORD serial = 0;
    if (!GetVolumeInformationW(root.c_str(), label.data(), DWORD(label.size()), &serial, nullptr,
                               nullptr, nullptr, 0))
        return {};
    // As the command line shows it.
    const QString digits = QStringLiteral("%1").arg(serial, 8, 16, QLatin1Char('0')).toUpper();
    return {QString::fromWCharArray(label.data()),
            serial == 0 ? QString() : digits.left(4) + QLatin1Char('-') + digits.mid(4)};
}

} // namespace platform
