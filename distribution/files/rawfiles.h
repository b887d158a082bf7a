#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>

/// Finds the camera's raw files beside photos: files of the same base name with the suffix of a raw
/// file, written in any case. Lists each folder once and remembers it, so use one for a moment, not
/// for good. Blocks; for worker threads.
class RawFiles
{
public:
    /// \a photoPath as the service writes it, or as this machine does. Paths of this machine, in
    /// the order of their suffixes.
    QStringList beside(const QString &photoPath);

private:
    /// Names by lower-case name.
    using Listing = QMultiMap<QString, QString>;
    const Listing &listing(const QString &folder);

    QHash<QString, Listing> listings_;
};

/// A photo's path as the service writes it, with slashes that the reply escaped, in the form that
/// this machine's disk calls take.
QString sourceOnDisk(const QString &replyPath);
/// What speaks against reading \a source, a path that a reply named, as sourceOnDisk() gives it;
/// empty when nothing does. A path that is missing altogether is as good as a file that is not
/// there.
QString flawOfSource(const QString &source);
