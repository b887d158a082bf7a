#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// A photo or raw file that the service has on its books for an order.
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

/// Text of an entry's kind.
QString kindText(PhotoEntry::Kind kind);

/// Where each entry of \a before is in the later list; -1 for those that are not in it. An entry
/// without an id is not known again.
QVector<int> laterPositions(const QVector<PhotoEntry> &before, const QVector<PhotoEntry> &later);
/// Given such \a positions, the first entry from \a from on that is in the later list or, when
/// there is none, the last one before it; -1 when none is left at all.
int nearestKept(const QVector<int> &positions, int from);
