#pragma once

#include <limits>

class QTextBlock;
class QTextDocument;
class QTextTable;

/// Where the rows of a text document's tables lie.
namespace tablerows {

/// All of it, after each change and before any question: left to itself the layout takes some
/// changes over in part, and forgets what it had not come to yet.
void layOut(QTextDocument *document);

struct Extent
{
    double top;
    double bottom;
};

constexpr int allLines = std::numeric_limits<int>::max();
/// Of a paragraph's first \a lines lines.
Extent extent(const QTextBlock &block, int lines = allLines);
/// Of the row's content, of its texts no more than \a lines lines. Cells that span several rows do
/// not count.
Extent extent(const QTextTable *table, int row, int lines = allLines);

/// The table in the row's first cell; nullptr when there is none.
QTextTable *nested(const QTextTable *table, int row);
/// Rows that are repeated on every page.
int headers(const QTextTable *table);

} // namespace tablerows
