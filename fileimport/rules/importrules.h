#pragma once

#include "fileimport/rules/importrecords.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// What the import window decides about names and folders, by mode. Pure functions; no disk here.
namespace importrules {

/// As the tool's card is called.
QString toolName(ImportMode mode);

/// Filter of the file dialog.
QString dialogFilter(ImportMode mode);

/// The folders below an order's import path that the mode fills.
QStringList subFolders(ImportMode mode);
/// The one of them for a file with \a suffix. An upper-case "JPEG" counts as a raw file: studios
/// have relied on that, and on "JPGE" not doing so.
QString subFolderFor(ImportMode mode, const QString &suffix);

/// Whether the announcement of its folder names \a file: others are copied all the same.
bool isAnnounced(const ImportFile &file);
/// Tells which kinds among the imported \a files no announcement names; empty when none.
QString unannouncedText(const QVector<ImportFile> &files);

/// Whether anything says where \a order is imported.
bool hasFolder(const ImportOrder &order);
/// The import folder of \a order: the one it has, otherwise composed from its values.
QString importPathOf(const ImportOrder &order);

/// The names among \a files that the customer did not choose, in order.
QStringList unchosenNames(const QVector<ImportFile> &files, const QStringList &chosenNames);

/// The question to ask before taking photos under \a names the customer did not choose.
QString unchosenQuestion(const QStringList &names);

/// How many of \a files are not imported and not among \a paths.
int unimportedWithout(const QVector<ImportFile> &files, const QStringList &paths);

/// What to ask before \a orders are left for another branch's: how many files would wait
/// out of sight. Empty when none.
QString leavingQuestion(const QVector<ImportOrder> &orders);

/// What to tell before the window closes: that an import \a isRunning, otherwise how many orders
/// are copied but \a unregistered, which is offered again later when it \a isRemembered. Empty when
/// neither is.
QString closingNotice(bool isRunning, int unregistered, bool isRemembered);

/// Files of one choice that would land on the same target, grouped; names compared without case.
QVector<QStringList> sameTargetGroups(const QVector<ImportFile> &files);

/// Other listed orders whose import folder is that of the order at \a index.
QVector<int> ordersSharingFolder(const QVector<ImportOrder> &orders, int index);

} // namespace importrules
