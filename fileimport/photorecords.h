#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

/// A file that the service has on its books as imported for an order.
struct PhotoEntry
{
    enum class Kind { Photo, RawFile };

    QString imgName;
    QString id;           ///< the service's; without one it cannot be deleted there
    QString localPath;    ///< in Windows form; empty when the service does not know
    QStringList variants; ///< paths of its smaller variants, in Windows form
    QString url;          ///< remote image; raw files have none as a rule
    QString icon;         ///< shown when there is no image; raw files have one
    QString isDownload;
    Kind kind = Kind::Photo;
};

/// How the removal of one entry from disk ended.
struct DeleteFileResult
{
    bool success = false; ///< the entry's main file is gone; variants may have failed
    QString message;      ///< for the user, line by line; empty when nothing failed
    PhotoEntry photo;
};
Q_DECLARE_METATYPE(DeleteFileResult)

/// Text of an entry's kind.
QString kindText(PhotoEntry::Kind kind);
