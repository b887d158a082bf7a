#pragma once

#include "marks/rules/choice.h"
#include "marks/rules/renaming.h"
#include "photoimport/orders/photoorder.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/// What becomes of the files chosen for an order before they are imported. Pure functions.
namespace photomarks {

/// What of \a orders is still to be imported in \a photoMode, for the marks; orders without such
/// files, or without a folder, are left out.
QVector<marks::Choice> choicesOf(const QVector<PhotoOrder> &orders, PhotoMode photoMode);

/// All folders into which the files of \a order may go in one form or another, in Windows form.
QStringList foldersOf(const PhotoOrder &order, PhotoMode photoMode);

/// \a files as what is renamed: only those of which nothing is imported may be.
QVector<renaming::File> renamable(const QVector<SourceFile> &files);

/// \a files with the \a names that some sources get.
QVector<SourceFile> renamed(QVector<SourceFile> files, const QHash<QString, QString> &names);

/// Positions of the \a sources among \a files that are not imported.
QVector<int> unfinishedAmong(const QVector<SourceFile> &files, const QSet<QString> &sources);

} // namespace photomarks
