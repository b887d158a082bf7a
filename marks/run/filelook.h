#pragma once

#include "marks/rules/filemark.h"
#include "marks/rules/renaming.h"
#include "tasks/stopflag.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

namespace marks {

/// The files of a folder, by the key of their names (renaming::nameKey).
using Listing = QHash<QString, StandingFile>;

/// What the disks tell of a choice without a file being opened.
struct DiskFacts
{
    /// The chosen files with their sizes and times; those with a size of -1 are not there.
    QVector<ChosenFile> files;
    QHash<QString, Listing> targets; ///< by the key of the folder (wirePathKey)
    QStringList unlisted;            ///< keys of folders of which nothing can be told
};

/// Lists the folders of the sources and of the targets once each. Blocks; for worker threads.
DiskFacts lookAtDisks(QVector<ChosenFile> files, const QStringList &folders, const StopFlag &stop);

/// What stands under the path \a target (Windows form) by the listings.
std::optional<StandingFile> standingAt(const DiskFacts &facts, const QString &target);

/// Files of one order that want other names.
struct RenameRequest
{
    OrderIdentity order;
    QVector<renaming::File> files; ///< all that are chosen
    QSet<QString> sources;         ///< those that want another name
    QStringList folders;           ///< where their targets may lie, in Windows form
};

struct NewNames
{
    QHash<OrderIdentity, QHash<QString, QString>> names; ///< by order and source
    QString unreadable; ///< a folder whose names cannot be told; nothing is to be renamed then
};

/// Finds names that are free in all folders of each order. Blocks; for worker threads.
NewNames findNewNames(const QVector<RenameRequest> &requests);

/// What to tell of NewNames::unreadable.
QString unreadableText(const QString &folder);

} // namespace marks
