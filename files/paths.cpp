#include "files/paths.h"

#include "files/safename.h"

#include <QDebug>
#include <QStringList>
#include <QUrl>

namespace {

QString twoDigits(const QString &number)
{
    return number.size() == 1 ? QLatin1Char('0') + number : number;
}

/// An empty value stays empty: it leaves its place in the path out instead of filling it.
QString component(const QString &value)
{
    return value.isEmpty() ? value : safeFileName(value);
}

/// \a value as a piece of a component: it cannot start a new one.
QString piece(QString value)
{
    return value.replace(QLatin1Char('\\'), QLatin1Char('_'))
        .replace(QLatin1Char('/'), QLatin1Char('_'));
}

} // namespace

ShootDate parseShootDate(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('-'), Qt::SkipEmptyParts);
    if (parts.size() != 3)
        return {};
    return {parts.at(0), twoDigits(parts.at(1)), twoDigits(parts.at(2))};
}

QString formatDate(int year, int month, int day)
{
    return QStringLiteral("%1-%2-%3")
        .arg(year, 4, 10, QLatin1Char('0'))
        .arg(month, 2, 10, QLatin1Char('0'))
        .arg(day, 2, 10, QLatin1Char('0'));
}

QString convertPathForService(const QString &path, const QString &shareHost)
{
    qDebug() << "提交之前的path: " << path;
    QString converted = path;
    for (const QString &mount : {QStringLiteral("/Volumes/"), QStringLiteral("/volumes/")}) {
        if (path.startsWith(mount)) {
            converted =
                QStringLiteral("\\\\") + shareHost + QLatin1Char('\\') + path.mid(mount.size());
            break;
        }
    }
    converted.replace(QLatin1Char('/'), QLatin1Char('\\'));
    qDebug() << "提交之后的path: " << converted;
    return converted;
}

QString shareHostOf(const QString &orderPath, const QString &serviceUrl)
{
    QString path = orderPath;
    path.replace(QLatin1Char('/'), QLatin1Char('\\'));
    if (path.startsWith(QLatin1String("\\\\"))) {
        const QString host = path.section(QLatin1Char('\\'), 2, 2);
        if (!host.isEmpty())
            return host;
    }
    return QUrl(serviceUrl).host();
}

QString composeImportPath(const QMap<QString, QString> &order)
{
    const QString configured = order.value(QStringLiteral("importPath"));
    if (!configured.isEmpty())
        return configured;

    const auto value = [&order](const char *key) -> QString {
        return order.value(QLatin1String(key));
    };
    const auto named = [&value](const char *key) -> QString {
        const QString name = value(key);
        return name.isEmpty() ? name : QLatin1Char('_') + piece(name);
    };
    QString number = value("orderNumber");
    if (!value("photoNum").isEmpty())
        number += QLatin1Char('-') + value("photoNum");

    const QString path = QStringLiteral("%1\\%2\\%3\\%4-%5%6%7")
                             .arg(value("importPublicPath"), component(value("shotdate_year")),
                                  component(value("shotdate_month")), piece(value("shotdate_day")),
                                  piece(number), named("mname"), named("wname"));
    const int lastName = path.lastIndexOf(QLatin1Char('\\')) + 1;
    return path.left(lastName) + safeFileName(path.mid(lastName));
}

QString wirePathKey(const QString &wirePath)
{
    QString key = wirePath;
    key.replace(QLatin1Char('/'), QLatin1Char('\\'));
    while (key.endsWith(QLatin1Char('\\')))
        key.chop(1);
    return key.toCaseFolded();
}

QString joinWirePath(const QString &folder, const QString &name)
{
    const bool isOpen = folder.endsWith(QLatin1Char('\\')) || folder.endsWith(QLatin1Char('/'));
    return isOpen ? folder + name : folder + QLatin1Char('\\') + name;
}

QString joinLocalPath(const QString &folder, const QString &name)
{
    return folder.endsWith(QLatin1Char('/')) ? folder + name : folder + QLatin1Char('/') + name;
}
