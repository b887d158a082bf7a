#pragma once

#include "ledger/ledgerrecords.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// Files of photos that the service has forgotten and that still lie on the disk. They go only when
/// they are, to the last byte, what was to be deleted then.
namespace leftfiles {

enum class Ending {
    Removed,
    Gone,    ///< the order's folder is there, and it is not below it any more
    Changed, ///< it is another file by now, or nobody knows what it was: it stays
    Named,   ///< the service still lists the photo: it stays
    Outside, ///< it is no file of the order's folder, as the service gives that now: it stays
    Failed,  ///< it is there and could not be removed, or its folder cannot be reached
};

struct Result
{
    ledger::DeletionId id = 0;
    QString path; ///< wire form
    Ending ending = Ending::Failed;

    /// Whether it needs to be offered no more.
    bool isDone() const { return ending == Ending::Removed || ending == Ending::Gone; }
};

/// What a fresh listing names of an order's photos, and where the order's files lie.
struct Listing
{
    QString orderFolder; ///< wire form
    QStringList photos;  ///< ids and names
    QStringList paths;   ///< either form
};

/// A photo's variants go with it, and a deletion that was asked for again is the same.
int photosAmong(const QVector<ledger::Deletion> &files);

/// Whether the service still has the photo that \a file is of.
bool isNamed(const ledger::NewDeletion &file, const Listing &listing);

/// Removes those of \a files that may go. Blocks; for worker threads.
QVector<Result> remove(const QVector<ledger::Deletion> &files, const Listing &listing);

/// How it went, for the user: what became of each file that is still there.
QString textOf(const QVector<Result> &results);
/// What the service said of photos of which nobody knew.
QString verifiedText(int named, int forgotten);

} // namespace leftfiles
