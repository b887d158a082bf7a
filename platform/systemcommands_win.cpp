#include "platform/longpath_win.h"
#include "platform/systemcommands.h"

#include <QDir>

#include <windows.h>

namespace platform {

namespace {

QString decoded(const QByteArray &bytes, UINT codePage, DWORD flags)
{
    const int size =
        MultiByteToWideChar(codePage, flags, bytes.constData(), bytes.size(), nullptr, 0);
    std::wstring text(size_t(size), L'\0');
    MultiByteToWideChar(codePage, flags, bytes.constData(), bytes.size(), text.data(), size);
    return QString::fromStdWString(text);
}

} // namespace

Command folderCommand(const QString &path)
{
    return {QStringLiteral("explorer.exe"), {QDir::toNativeSeparators(path)}};
}

bool isFolder(const QString &path)
{
    // QFileInfo would follow a shortcut.
    const DWORD attributes = GetFileAttributesW(longPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

Command pingCommand(const QString &host, int timeoutMs)
{
    return {QStringLiteral("ping"),
            {QStringLiteral("-n"), QStringLiteral("1"), QStringLiteral("-w"),
             QString::number(timeoutMs), host}};
}

QString textOf(const QByteArray &output)
{
    const QString utf8 = decoded(output, CP_UTF8, MB_ERR_INVALID_CHARS);
    if (!utf8.isEmpty())
        return utf8;
    // This program's own code page is UTF-8; the system's programs write in that of the console.
    DWORD codePage = CP_OEMCP;
    GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTCODEPAGE | LOCALE_RETURN_NUMBER,
                   reinterpret_cast<LPWSTR>(&codePage), sizeof codePage / sizeof(wchar_t));
    return decoded(output, codePage, 0);
}

} // namespace platform
