#pragma once

#include "app/context/orderidentity.h"

#include <QByteArray>
#include <QDate>
#include <QHash>
#include <QRgb>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// What is known of chosen files before they are imported. Values and pure functions; any thread.
namespace marks {

/// What an import of a chosen file would do.
enum class Mark {
    None,       ///< not known yet, or its source cannot be read: its copy will tell why
    Comparing,  ///< what is in the files decides, and they are being read
    New,        ///< nothing speaks of it
    Imported,   ///< the same content stands in this order already
    Differs,    ///< its name stands in the target with another content, which would be replaced
    OtherOrder, ///< the same content was imported for another order
};

/// What a tag says; empty for None.
QString textOf(Mark mark);
QRgb colourOf(Mark mark);
/// Those that a filter offers, in its order.
const QVector<Mark> &filterMarks();

/// Times are ms since 1970 in UTC.
struct ChosenFile
{
    QString source; ///< absolute, as this machine writes it
    QString target; ///< where it would land, in Windows form
    qint64 size = 0;
    qint64 modified = 0;
};

/// A file that stands in a target folder.
struct StandingFile
{
    QString path; ///< as this machine writes it
    qint64 size = 0;
    qint64 modified = 0;
};

/// One earlier import of a file of this name, size and time.
struct KnownCopy
{
    OrderIdentity order;
    QString orderNumber; ///< as users know it
    QDate day;           ///< of that import
    /// The very file: the same place on the same disk. Otherwise what was read tells whether it is.
    bool isSameSource = false;
    bool isUpright = false; ///< the target was turned: other bytes than its source's
    QByteArray sourceHash;  ///< empty where only sizes were checked
    QByteArray targetHash;
    QString target; ///< in Windows form
    /// What stands there now; looked for in this order's folders alone.
    std::optional<StandingFile> standing;
};

/// All that is known of one chosen file without reading it.
struct Evidence
{
    ChosenFile file;
    bool isReadable = true;
    std::optional<StandingFile> standing; ///< under the name that it would get
    QVector<KnownCopy> copies;
};

/// What was read: the content's hash by path, empty for a file that could not be read.
using Hashes = QHash<QString, QByteArray>;

/// A chosen file with its mark, and what the mark was made of.
struct MarkedFile
{
    ChosenFile file;
    Mark mark = Mark::None;
    std::optional<StandingFile> standing; ///< what it would replace, or is the same as
    std::optional<KnownCopy> elsewhere;   ///< its import for another order
    QStringList toRead;                   ///< paths whose content decides, while it is Comparing
};

/// Judges one file of \a order. Name, size and time suffice where they prove it; a file is taken
/// for imported, and so offered to be left out, only when it is the very file of an earlier import
/// or has its content.
MarkedFile judge(const Evidence &evidence, const OrderIdentity &order, const Hashes &hashes);

/// The files chosen for one order.
struct OrderMarks
{
    OrderIdentity order;
    QString orderNumber; ///< as users know it
    QVector<MarkedFile> files;
};

/// How many files have which mark.
QHash<Mark, int> countsOf(const QVector<MarkedFile> &files);

inline uint qHash(Mark mark, uint seed = 0)
{
    return ::qHash(int(mark), seed);
}

} // namespace marks
