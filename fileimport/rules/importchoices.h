#pragma once

#include "fileimport/rules/importrecords.h"
#include "marks/rules/choice.h"
#include "marks/rules/renaming.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QVector>

/// What becomes of the files chosen for an order before they are imported. Pure functions.
namespace importchoices {

/// What of \a orders is still to be imported, for the marks; orders without such files are left
/// out.
QVector<marks::Choice> choicesOf(const QVector<ImportOrder> &orders, ImportMode mode);

/// The folders into which the files of \a order may go, in Windows form.
QStringList foldersOf(const ImportOrder &order, ImportMode mode);

/// \a files without those of \a sources that are not imported; the rest move up.
QVector<ImportFile> without(const QVector<ImportFile> &files, const QSet<QString> &sources);

/// \a files as what is renamed: only those that wait may be.
QVector<renaming::File> renamable(const QVector<ImportFile> &files);

/// \a files with the \a names that some sources get.
QVector<ImportFile> renamed(QVector<ImportFile> files, const QHash<QString, QString> &names);

} // namespace importchoices
