#include "distribution/sheet/tablerows.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextTable>

#include <algorithm>
#include <limits>

namespace tablerows {

namespace {

constexpr Extent nothing{std::numeric_limits<double>::max(), 0};

} // namespace

void layOut(QTextDocument *document)
{
    document->markContentsDirty(0, document->characterCount());
    document->pageCount();
}

Extent extent(const QTextBlock &block, int lines)
{
    const QTextLayout *text = block.layout();
    const double start = block.document()->documentLayout()->blockBoundingRect(block).top();
    const int last = std::min(text->lineCount(), lines) - 1;
    if (last < 0)
        return nothing;
    // A line may have gone to the next page, away from where its paragraph begins.
    return {start + text->lineAt(0).rect().top(), start + text->lineAt(last).rect().bottom()};
}

Extent extent(const QTextTable *table, int row, int lines)
{
    Extent all = nothing;
    for (int column = 0; column < table->columns(); ++column) {
        const QTextTableCell cell = table->cellAt(row, column);
        if (cell.rowSpan() > 1)
            continue;
        for (auto part = cell.begin(); !part.atEnd(); ++part) {
            if (!part.currentBlock().isValid())
                continue;
            const Extent each = extent(part.currentBlock(), lines);
            all = {std::min(all.top, each.top), std::max(all.bottom, each.bottom)};
        }
    }
    return all;
}

QTextTable *nested(const QTextTable *table, int row)
{
    const QTextTableCell cell = table->cellAt(row, 0);
    for (auto part = cell.begin(); !part.atEnd(); ++part) {
        if (auto *inner = qobject_cast<QTextTable *>(part.currentFrame()))
            return inner;
    }
    return nullptr;
}

int headers(const QTextTable *table)
{
    return std::min(table->format().headerRowCount(), table->rows() - 1);
}

} // namespace tablerows
