#include "cardcheck/rules/cardfiles.h"

#include "files/rawsuffixes.h"

#include <QDateTime>
#include <QDir>
#include <QSet>

#include <algorithm>

namespace cardfiles {

namespace {

const QSet<QString> &photoSuffixes()
{
    static const QSet<QString> suffixes{
        QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("jpge"),
        QStringLiteral("jpe"),  QStringLiteral("heic"), QStringLiteral("heif"),
        QStringLiteral("hif"),  QStringLiteral("png"),  QStringLiteral("tif"),
        QStringLiteral("tiff"), QStringLiteral("webp")};
    return suffixes;
}

const QSet<QString> &rawFileSuffixes()
{
    static const QSet<QString> suffixes = [] {
        const QStringList imported = rawSuffixes();
        QSet<QString> all(imported.cbegin(), imported.cend());
        for (const char *other :
             {"3fr", "crw", "dcr", "dng", "erf", "fff", "gpr", "iiq", "kdc", "mef", "mos", "mrw",
              "nrw", "orf", "pef", "ptx", "r3d", "rw2", "rwl", "sr2", "srf", "srw", "x3f"})
            all.insert(QLatin1String(other));
        return all;
    }();
    return suffixes;
}

const QSet<QString> &videoSuffixes()
{
    static const QSet<QString> suffixes = [] {
        QSet<QString> all;
        for (const char *each : {"3gp", "avi", "braw", "crm", "insv", "lrv", "m2t", "m2ts", "m4v",
                                 "mkv", "mov", "mp4", "mpeg", "mpg", "mts", "mxf", "wmv"})
            all.insert(QLatin1String(each));
        return all;
    }();
    return suffixes;
}

QString suffixOf(const QString &fileName)
{
    const int point = fileName.lastIndexOf(QLatin1Char('.'));
    return point < 0 ? QString() : fileName.mid(point + 1).toLower();
}

} // namespace

Kind kindOf(const QString &fileName)
{
    // What another system keeps beside a file carries the file's own suffix.
    if (fileName.startsWith(QLatin1String("._")))
        return Kind::Other;
    const QString suffix = suffixOf(fileName);
    if (photoSuffixes().contains(suffix))
        return Kind::Photo;
    if (rawFileSuffixes().contains(suffix))
        return Kind::RawFile;
    return videoSuffixes().contains(suffix) ? Kind::Video : Kind::Other;
}

QString kindText(Kind kind)
{
    switch (kind) {
    case Kind::Photo:
        return QStringLiteral("照片");
    case Kind::RawFile:
        return QStringLiteral("原始档");
    case Kind::Video:
        return QStringLiteral("视频");
    case Kind::Other:
        return QStringLiteral("其他");
    }
    Q_UNREACHABLE();
}

QString CardFile::name() const
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

bool isCameraFolder(const QString &name)
{
    static const QStringList names{QStringLiteral("DCIM"), QStringLiteral("PRIVATE"),
                                   QStringLiteral("MP_ROOT")};
    return names.contains(name, Qt::CaseInsensitive);
}

bool isPartOfCard(const QString &root)
{
    const QStringList levels = QDir::fromNativeSeparators(root).split(QLatin1Char('/'));
    return std::any_of(levels.cbegin(), levels.cend(), isCameraFolder);
}

bool isSystemFolder(const QString &name)
{
    static const QStringList names{QStringLiteral("System Volume Information"),
                                   QStringLiteral("$RECYCLE.BIN"),
                                   QStringLiteral(".Trashes"),
                                   QStringLiteral(".Spotlight-V100"),
                                   QStringLiteral(".fseventsd"),
                                   QStringLiteral(".TemporaryItems"),
                                   QStringLiteral("lost+found")};
    return names.contains(name, Qt::CaseInsensitive) || name.startsWith(QLatin1String(".Trash-"));
}

QVector<QDate> shootingDays(const QVector<CardFile> &files, int most)
{
    QSet<QDate> days;
    for (const CardFile &file : files) {
        if (file.counts())
            days.insert(QDateTime::fromMSecsSinceEpoch(file.modifiedMs).date());
    }
    QVector<QDate> sorted(days.cbegin(), days.cend());
    std::sort(sorted.begin(), sorted.end());
    return sorted.mid(std::max(0, sorted.size() - most));
}

} // namespace cardfiles
