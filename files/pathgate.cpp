#include "files/pathgate.h"

#include "files/safename.h"
#include "platform/pathform.h"

#include <algorithm>

namespace pathgate {

namespace {

const QLatin1Char backslash('\\');

QString unified(QString path)
{
    return path.replace(QLatin1Char('/'), backslash);
}

bool hangsOnDrive(const QString &unifiedPath)
{
    return unifiedPath.size() > 1 && unifiedPath.at(1) == QLatin1Char(':');
}

/// Everything between separators; the drive's letter, or the share's host, comes first.
QStringList componentsOf(const QString &unifiedPath)
{
    return unifiedPath.split(backslash, Qt::SkipEmptyParts);
}

QString withoutTrailingDotsAndBlanks(QString component)
{
    while (component.endsWith(QLatin1Char('.')) || component.endsWith(QLatin1Char(' ')))
        component.chop(1);
    return component;
}

/// Windows drops dots and blanks at a name's end, so that ".. " and "..." are no names of their
/// own.
bool leadsUp(const QString &component)
{
    return component != QLatin1String(".") && withoutTrailingDotsAndBlanks(component).isEmpty();
}

bool isControl(QChar character)
{
    return character < QLatin1Char(' ') || character == QChar(0x7F);
}

bool namesDeviceRoot(const QString &unifiedPath)
{
    return unifiedPath.startsWith(QLatin1String("\\\\?\\")) ||
           unifiedPath.startsWith(QLatin1String("\\\\.\\")) ||
           unifiedPath.startsWith(QLatin1String("\\??\\"));
}

/// levelsOf() a path known to be without a flaw.
QStringList soundLevelsOf(const QString &path)
{
    const QString whole = unified(path);
    QStringList key{whole.startsWith(QLatin1String("\\\\")) ? QStringLiteral("\\\\") : QString()};
    const auto components = componentsOf(whole);
    for (const QString &component : components) {
        if (component != QLatin1String("."))
            key.append(withoutTrailingDotsAndBlanks(component)
                           .normalized(QString::NormalizationForm_C)
                           .toCaseFolded());
    }
    return key;
}

} // namespace

Flaw flawOf(const QString &path)
{
    if (path.trimmed().isEmpty())
        return Flaw::Empty;
    if (std::any_of(path.cbegin(), path.cend(), isControl))
        return Flaw::Illegal;
    const QString whole = unified(path);
    if (namesDeviceRoot(whole))
        return Flaw::Device;
    QStringList components = componentsOf(whole);
    if (std::any_of(components.cbegin(), components.cend(), leadsUp))
        return Flaw::LeadsUp;
    if (std::any_of(components.cbegin(), components.cend(), isDeviceName))
        return Flaw::Device;
    if (!platform::componentsBelowRoot(path))
        return Flaw::NotAbsolute;
    const bool isWindowsPath = hangsOnDrive(whole) || whole.startsWith(QLatin1String("\\\\"));
    if (hangsOnDrive(whole))
        components.removeFirst();
    const auto hasColon = [](const QString &each) { return each.contains(QLatin1Char(':')); };
    if (isWindowsPath && std::any_of(components.cbegin(), components.cend(), hasColon))
        return Flaw::Illegal;
    return Flaw::None;
}

Flaw flawBelow(const QString &path, const QString &folder)
{
    const Flaw flaw = flawOf(path);
    if (flaw != Flaw::None)
        return flaw;
    if (flawOf(folder) != Flaw::None)
        return Flaw::Outside;
    const QStringList inner = soundLevelsOf(path);
    const QStringList outer = soundLevelsOf(folder);
    const bool below =
        inner.size() > outer.size() && std::equal(outer.cbegin(), outer.cend(), inner.cbegin());
    return below ? Flaw::None : Flaw::Outside;
}

bool isBelow(const QString &path, const QString &folder)
{
    return flawBelow(path, folder) == Flaw::None;
}

QStringList levelsOf(const QString &path)
{
    return flawOf(path) == Flaw::None ? soundLevelsOf(path) : QStringList();
}

QString reasonOf(Flaw flaw)
{
    switch (flaw) {
    case Flaw::None:
        break;
    case Flaw::Empty:
        return QStringLiteral("路径为空");
    case Flaw::NotAbsolute:
        return QStringLiteral("不是完整的路径");
    case Flaw::LeadsUp:
        return QStringLiteral("路径中含有上级目录");
    case Flaw::Device:
        return QStringLiteral("路径中含有系统设备名");
    case Flaw::Illegal:
        return QStringLiteral("路径中含有不允许的字符");
    case Flaw::Outside:
        return QStringLiteral("不在订单的导片目录中");
    }
    return {};
}

Refusal refusalOfImport(const QString &order, const QString &importPath, const QString &publicPath)
{
    if (!importPath.isEmpty())
        return {order, importPath, flawOf(importPath), Setting::OrderFolder};
    if (!publicPath.isEmpty())
        return {order, publicPath, flawOf(publicPath), Setting::PublicFolder};
    return {order, {}, Flaw::None, Setting::OrderFolder};
}

QString Refusal::text() const
{
    QString advice;
    switch (setting) {
    case Setting::OrderFolder:
        advice = QStringLiteral("请在后台修改该订单的本地云导片路径");
        break;
    case Setting::PublicFolder:
        advice = QStringLiteral("请在后台修改分店的公共导片路径");
        break;
    case Setting::PhotoPath:
        return QStringLiteral("订单 %1 的照片路径无法使用: %2\n原因: %3\n"
                              "请在后台检查该照片登记的路径！")
            .arg(order, path, reasonOf(flaw));
    }
    return QStringLiteral("订单 %1 的导片路径无法使用: %2\n原因: %3\n%4，"
                          "例如 \\\\服务器\\共享\\目录 或 D:\\目录！")
        .arg(order, path, reasonOf(flaw), advice);
}

} // namespace pathgate
