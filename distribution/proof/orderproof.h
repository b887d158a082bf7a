#pragma once

#include "app/context/orderidentity.h"
#include "distribution/files/fileoutcome.h"

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QVector>

/// A file that this program wrote into an order's folder before, as it was then. The path is as
/// this machine writes it.
struct EarlierFile
{
    QString path;
    qint64 size = 0;
    qint64 modified = 0; ///< ms since 1970, UTC
    QString tool;        ///< the card that wrote it
    QDateTime written;

    /// Whether it still stands as it was written, and is no link. Touches the disk.
    bool isUnchanged() const;
};

/// A file of the run that is not in its place.
struct MissingFile
{
    enum class Why : quint8 {
        NotWritten,
        NotReplaced, ///< not written, and an earlier file stands under its name
        Gone,        ///< since it was written
        SizeDiffers, ///< from what was written
    };

    QString path;
    Why why = Why::NotWritten;
};

/// What an order's folder holds at the end of a run, beside what the run was to write.
struct OrderProof
{
    QString folder;      ///< of the order, as this machine writes it
    bool isRead = false; ///< whether all of the folder could be read; otherwise nothing is known
    int expected = 0;    ///< files
    int inPlace = 0;     ///< of them
    QVector<MissingFile> missing;
    /// Unchanged files that an earlier run of the same card wrote and this one was not to.
    QVector<EarlierFile> earlier;
    /// The same of other cards.
    QVector<EarlierFile> ofOtherCards;
    int others = 0; ///< files that this run did not write, those above included

    bool isComplete() const { return isRead && missing.isEmpty(); }
};
Q_DECLARE_METATYPE(OrderProof)

/// The same with the order that it is about.
struct ProvedOrder
{
    OrderIdentity order;
    QString number; ///< as users know it
    OrderProof proof;
};

namespace orderproof {

/// Where files of earlier runs are moved to, in an order's folder; nothing in it counts.
inline const QString oldFiles = QStringLiteral("旧文件");

/// Compares the order's \a folder with the \a files that a run of \a tool was to write there.
/// \a earlier: all that the ledger knows to have been written below it. Names that differ in case
/// alone are one, links are not followed. Blocks; for worker threads.
OrderProof prove(const QString &folder, const QVector<FileOutcome> &files,
                 const QVector<EarlierFile> &earlier, const QString &tool);

/// "没有写入"
QString textOf(MissingFile::Why why);

} // namespace orderproof
