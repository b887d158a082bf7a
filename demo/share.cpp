#include "demo/share.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace demo {

namespace {

QString cannotWrite(const QString &path)
{
    return QStringLiteral("cannot write %1").arg(path);
}

bool makeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.exists() || (file.open(QIODevice::WriteOnly) &&
                             file.write(content) == content.size() && file.flush());
}

} // namespace

Share::Share(const QString &dataFolder)
    : markerPath_(dataFolder + QStringLiteral("/.made-by-the-demo-service"))
    , root_(dataFolder + QStringLiteral("/share"))
{
}

QMap<QString, QString> Share::publicFolders() const
{
    return {{QStringLiteral("101"), root_ + QStringLiteral("/海棠路旗舰店")},
            {QStringLiteral("102"), root_ + QStringLiteral("/滨江店")}};
}

QString Share::prepare() const
{
    if (QFileInfo::exists(root_) && !QFileInfo::exists(markerPath_))
        return QStringLiteral("%1 exists and was not made by this service").arg(root_);
    if (!QDir().mkpath(root_))
        return cannotWrite(root_);
    if (!makeFile(markerPath_, "The demo service empties the folder share beside this file.\n"))
        return cannotWrite(markerPath_);
    for (const QString &folder : publicFolders()) {
        if (!QDir().mkpath(folder))
            return cannotWrite(folder);
    }
    // A file where an order's folder wants to be: that import must fail cleanly.
    const QString blocked = root_ + QStringLiteral("/blocked");
    return makeFile(blocked, "not a folder\n") ? QString() : cannotWrite(blocked);
}

QString Share::empty() const
{
    if (!QFileInfo::exists(markerPath_) || QFileInfo(root_).isSymLink())
        return QStringLiteral("%1 was not made by this service").arg(root_);
    if (!QDir(root_).removeRecursively())
        return QStringLiteral("cannot empty %1").arg(root_);
    return prepare();
}

QStringList Share::present(const QString &folder, const QVector<AnnouncedFile> &announced)
{
    QStringList names;
    for (const AnnouncedFile &file : announced) {
        const QFileInfo onDisk(QDir(folder), file.name);
        if (onDisk.fileName() == file.name && onDisk.isFile() && onDisk.size() == file.size)
            names << file.name;
    }
    return names;
}

} // namespace demo
