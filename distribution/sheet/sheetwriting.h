#pragma once

#include "distribution/sheet/sheetinput.h"

#include <QString>
#include <QStringList>

/// Pieces that the parts of the production sheet are written with.
namespace sheetwriting {

/// \a text as it is to be read: markup is text too, line breaks stay.
QString escaped(const QString &text);
/// Those of \a words that are not empty, with blanks between them.
QString joinedWords(const QStringList &words);
/// \a text in one of the sheet's classes.
QString span(const char *styleClass, const QString &text);
QString sectionTitle(const QString &title);
/// The opening tag of a table with thin lines.
QString borderedTable();

/// A file in a folder below the order's.
QString inOrderFolder(const SheetInput &input, const QString &folder, const QString &name);
QString thumbnailPath(const SheetInput &input, const DetailPhoto &photo);
/// The picture in a square of \a side pixels; nothing when there is no picture.
QString squarePicture(const SheetInput &input, const QString &path, int side);
/// The picture as large as \a box holds it; nothing when there is no picture.
QString fittedPicture(const SheetInput &input, const QString &path, const QSize &box);

} // namespace sheetwriting
