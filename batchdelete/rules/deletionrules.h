#pragma once

#include "batchdelete/rules/batchdeleterecords.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/// Which folders may be emptied, and how that is told. Pure functions unless said otherwise; paths
/// are in Windows form.
namespace deletionrules {

/// A folder's path as folders are compared: without case, link to itself, doubled or trailing
/// separators, and what Windows ignores at the end of a name.
struct FolderKey
{
    QString text;        ///< empty when the path is none that can be judged
    int depth = 0;       ///< how many names it has, those of server and share included
    bool isRoot = false; ///< of a drive or a share
    bool isWithin(const FolderKey &above) const;
};
FolderKey folderKey(const QString &path);

/// The folder in this machine's form, without anything superfluous.
QString localFolder(const QString &netPath);

/// What tells a folder, given in this machine's form, from every other; empty for unknown.
using IdentityOf = std::function<QByteArray(const QString &folder)>;

// Public import roots, below, are those of all branches that the account knows, that of the branch
// at work first. Empty ones count for nothing.

/// Why the path can be no order's folder, by its text alone: it is none, a root, is or holds a
/// public import root, or is the folder of a year or a month directly below one. Otherwise empty.
QString folderRefusal(const QString &netPath, const QStringList &publicRoots);

/// Why orders among \a listed (those that are checked are to be deleted) must not be, for each of
/// them, empty for those that may: its folder can be no order's, or it shares files with an order
/// that stays. Folders are compared by their paths and, since a drive letter or another name of a
/// server makes two paths of one folder, by \a identityOf.
QStringList refusals(
    const QVector<BatchDeleteOrderInfo> &listed, const QStringList &publicRoots,
    const IdentityOf &identityOf = [](const QString &) { return QByteArray(); });

/// The folders on the way from the public import root to that of an order, both left out, in this
/// machine's form. None when it lies below no root.
QStringList foldersAbove(const QString &netPath, const QStringList &publicRoots);

/// Why the folder must not be entered: it is a link, or one on the way to it is. Empty when it may
/// be. Touches the disk and can block; for worker threads.
QString linkRefusal(const QString &netPath, const QStringList &publicRoots);

/// What is to be deleted, and what not for which reason.
struct DeletionPlan
{
    QVector<BatchDeleteOrderInfo> orders;
    QVector<BatchDeleteOrderInfo> refused; ///< the reason is their note
};
/// Judges the checked orders of \a listed. Looks at the folders of all: touches the disk as
/// linkRefusal() does.
DeletionPlan plan(const QVector<BatchDeleteOrderInfo> &listed, const QStringList &publicRoots);

/// What a new scan of an order's folder found, joined with what is known from before: files that
/// were removed stay listed, and those that could not be keep their reason. What has changed since
/// has to be announced anew.
QVector<BatchDeleteFileInfo> merged(const QVector<BatchDeleteFileInfo> &before,
                                    QVector<BatchDeleteFileInfo> scanned);

/// What the user is asked before anything is deleted.
QString confirmation(const DeletionPlan &plan);
QString refusedNotice(const DeletionPlan &plan);

} // namespace deletionrules
