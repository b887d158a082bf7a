#include "platform/removabledrives.h"

#include <array>
#include <windows.h>

namespace platform {

QVector<RemovableDrive> removableDrives()
{
    // A drive without a card would ask for one in a box of the system's.
    DWORD before = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS, &before);
    QVector<RemovableDrive> drives;
    const DWORD present = GetLogicalDrives();
    for (int letter = 0; letter < 26; ++letter) {
        if ((present & (DWORD(1) << letter)) == 0)
            continue;
        const QString root = QChar(ushort('A' + letter)) + QStringLiteral(":/");
        const std::wstring name = root.toStdWString();
        std::array<wchar_t, MAX_PATH + 1> label{};
        ULARGE_INTEGER bytes{};
        if (GetDriveTypeW(name.c_str()) == DRIVE_REMOVABLE &&
            GetVolumeInformationW(name.c_str(), label.data(), DWORD(label.size()), nullptr, nullptr,
                                  nullptr, nullptr, 0) &&
            GetDiskFreeSpaceExW(name.c_str(), nullptr, &bytes, nullptr))
            drives.append({root, QString::fromWCharArray(label.data()), qint64(bytes.QuadPart)});
    }
    SetThreadErrorMode(before, nullptr);
    return drives;
}

} // namespace platform
