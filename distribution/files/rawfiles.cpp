#include "distribution/files/rawfiles.h"

#include "files/pathgate.h"
#include "files/paths.h"
#include "files/rawsuffixes.h"
#include "platform/pathform.h"

#include <QDir>
#include <QFileInfo>

QString sourceOnDisk(const QString &replyPath)
{
    QString path = replyPath;
    path.replace(QLatin1String("\\/"), QLatin1String("/"));
    return platform::toLocalPath(path);
}

QString flawOfSource(const QString &source)
{
    const pathgate::Flaw flaw = pathgate::flawOf(source);
    if (flaw == pathgate::Flaw::None || flaw == pathgate::Flaw::Empty)
        return {};
    return QStringLiteral("的路径错误，") + pathgate::reasonOf(flaw) + QStringLiteral(": ") +
           source;
}

const RawFiles::Listing &RawFiles::listing(const QString &folder)
{
    auto found = listings_.find(folder);
    if (found == listings_.end()) {
        found = listings_.insert(folder, {});
        const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden);
        for (const QString &name : names)
            found->insert(name.toLower(), name);
    }
    return *found;
}

QStringList RawFiles::beside(const QString &photoPath)
{
    static const QStringList suffixes = rawSuffixes();
    const QString path = sourceOnDisk(photoPath);
    if (!flawOfSource(path).isEmpty())
        return {};
    const QFileInfo photo(path);
    QStringList raws;
    for (const QString &suffix : suffixes) {
        const QString name = photo.completeBaseName() + QLatin1Char('.') + suffix;
        const QStringList found = listing(photo.path()).values(name.toLower());
        for (const QString &each : found) {
            if (each != photo.fileName())
                raws.append(joinLocalPath(photo.path(), each));
        }
    }
    return raws;
}
