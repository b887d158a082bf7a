#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>

/// What lies on a card, as a listing tells it. Pure values and functions.
namespace cardfiles {

enum class Kind {
    Photo,
    RawFile,
    Video,
    Other, ///< what the camera writes beside them; says nothing for or against formatting
};

/// By the suffix, in whatever case.
Kind kindOf(const QString &fileName);
QString kindText(Kind kind);

struct CardFile
{
    QString path;  ///< whole, as this machine writes it
    QString shown; ///< from the card's root on
    qint64 bytes = 0;
    qint64 modifiedMs = 0; ///< since 1970, UTC
    Kind kind = Kind::Other;

    QString name() const;
    bool counts() const { return kind != Kind::Other; }

    friend bool operator==(const CardFile &one, const CardFile &other)
    {
        return one.shown == other.shown && one.bytes == other.bytes &&
               one.modifiedMs == other.modifiedMs;
    }
};

/// A card, or a folder that is checked like one.
struct CardListing
{
    QString root; ///< as this machine writes it
    bool isListed = false;
    QVector<CardFile> files; ///< in the order of shown
    QStringList unlisted;    ///< folders, links and odd names whose files are not among them

    bool isSameAs(const CardListing &later) const
    {
        return later.isListed && files == later.files && unlisted == later.unlisted;
    }
};

/// Whether a folder of this name at a card's root shows that a camera wrote it.
bool isCameraFolder(const QString &name);
/// Whether \a root is a folder inside of a card, so that other files of the card are not looked at.
bool isPartOfCard(const QString &root);
/// Folders at a drive's root that systems keep for themselves.
bool isSystemFolder(const QString &name);

/// The days on which the files that count were written, earliest first, at most \a most of the
/// latest.
QVector<QDate> shootingDays(const QVector<CardFile> &files, int most);

} // namespace cardfiles
