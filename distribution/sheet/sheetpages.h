#pragma once

#include <QSizeF>

class QTextDocument;

/// Paginates \a document so that what belongs together is on one page: a picture and the lines
/// below it in its cell, a heading and the first rows of the table that it heads. The pages' ends
/// go through no line of text and no picture as long as the pictures of a row are of one height and
/// the cells of rows that may be moved are aligned at their top.
void paginate(QTextDocument *document, const QSizeF &page);
