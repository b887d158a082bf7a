#include "distribution/sheet/sheetpages.h"

#include "distribution/sheet/captionedpicture.h"
#include "distribution/sheet/productpages.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextLayout>
#include <QTextTable>

#include <cmath>
#include <optional>
#include <vector>

namespace {

constexpr double whole = 100;       // percent
constexpr double captionMargin = 5; // between the captions of neighbours
constexpr double withoutPages = 10'000'000;
constexpr int linesWithHeading = 2; // of a text that may go on on the next page

void collectTables(QTextFrame *frame, QVector<QTextTable *> *tables)
{
    const QList<QTextFrame *> children = frame->childFrames();
    for (QTextFrame *child : children) {
        if (auto *table = qobject_cast<QTextTable *>(child))
            tables->append(table);
        collectTables(child, tables);
    }
}

/// Columns whose shares make up less than the whole leave a table narrower than it is meant.
void fillWidth(QTextTable *table)
{
    QTextTableFormat format = table->format();
    QVector<QTextLength> widths = format.columnWidthConstraints();
    double sum = 0;
    for (const QTextLength &width : qAsConst(widths))
        sum += width.type() == QTextLength::PercentageLength ? width.rawValue() : whole;
    if (sum <= 0 || sum >= whole)
        return;
    for (QTextLength &width : widths)
        width = QTextLength(QTextLength::PercentageLength, width.rawValue() * whole / sum);
    format.setColumnWidthConstraints(widths);
    table->setFormat(format);
}

void joinCaptions(const QTextTable *table, double pageWidth, CaptionedPicture *pictures)
{
    const double width = pageWidth / table->columns() - captionMargin;
    for (int row = 0; row < table->rows(); ++row) {
        for (int column = 0; column < table->columns(); ++column) {
            const QTextTableCell cell = table->cellAt(row, column);
            const QTextBlock first = cell.firstCursorPosition().block();
            if (first != cell.lastCursorPosition().block())
                pictures->join(first, first.next(), width);
        }
    }
}

/// A table that lies in no other, with the heading above it.
class HeadedTable
{
public:
    /// While the document has no pages.
    explicit HeadedTable(QTextTable *table)
        : table_(table), above_(table->document()->findBlock(table->firstPosition() - 1))
    {
        if (tablerows::headers(table) > 0)
            products_.emplace(table);
        const tablerows::Extent extent = start();
        height_ = extent.bottom - extent.top;
    }

    /// Once the document has pages, and nothing above moves any more.
    void divide(double pageHeight)
    {
        const tablerows::Extent extent = start();
        const double nextPage = (std::floor(extent.top / pageHeight) + 1) * pageHeight;
        if (extent.bottom > nextPage && height_ < pageHeight)
            moveTo(nextPage, pageHeight);
        if (products_)
            products_->divide(pageHeight);
    }

private:
    void moveTo(double page, double pageHeight)
    {
        QTextCursor cursor(above_);
        QTextBlockFormat format = cursor.blockFormat();
        const double room = page + table_->document()->documentMargin() - start().top;
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        cursor.setBlockFormat(format);
        tablerows::layOut(table_->document());
        if (start().top < page + pageHeight)
            return;
        // The page's end had cut the line: the layout has turned the page once already.
        format.setPageBreakPolicy(QTextFormat::PageBreak_Auto);
        format.setTopMargin(room);
        cursor.setBlockFormat(format);
        tablerows::layOut(table_->document());
    }

    /// The heading and what may not be on another page than it.
    tablerows::Extent start() const
    {
        tablerows::Extent extent =
            products_ ? products_->start() : tablerows::extent(table_, 0, linesWithHeading);
        if (!above_.text().isEmpty())
            extent.top = tablerows::extent(above_).top;
        return extent;
    }

    QTextTable *table_;
    QTextBlock above_; ///< empty where there is no heading
    std::optional<ProductPages> products_;
    double height_ = 0; ///< of the start
};

/// Where a line of \a paragraph stands across a page's end: where that page ends; otherwise 0.
double cutAt(const QTextBlock &paragraph, double pageHeight)
{
    const double top = paragraph.document()->documentLayout()->blockBoundingRect(paragraph).top();
    const QTextLayout *text = paragraph.layout();
    for (int line = 0; line < text->lineCount(); ++line) {
        const QRectF rect = text->lineAt(line).rect().translated(0, top);
        const double end = (std::floor(rect.top() / pageHeight) + 1) * pageHeight;
        if (rect.bottom() - 1 >= end)
            return end;
    }
    return 0;
}

/// Below a table that it has divided the layout lets a paragraph stand across a page's end now and
/// then; such a one goes to the next page as a whole.
void moveCutParagraphs(QTextDocument *document, double pageHeight)
{
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        QTextCursor cursor(block);
        if (cursor.currentTable())
            continue;
        const double end = cutAt(block, pageHeight);
        if (end <= 0)
            continue;
        QTextBlockFormat format = cursor.blockFormat();
        format.setTopMargin(format.topMargin() + end + document->documentMargin() -
                            tablerows::extent(block, 1).top);
        cursor.setBlockFormat(format);
        tablerows::layOut(document);
    }
}

} // namespace

void paginate(QTextDocument *document, const QSizeF &page)
{
    auto *pictures = new CaptionedPicture(document);
    QVector<QTextTable *> tables;
    collectTables(document->rootFrame(), &tables);
    QTextCursor edit(document);
    edit.beginEditBlock();
    for (QTextTable *table : qAsConst(tables)) {
        fillWidth(table);
        joinCaptions(table, page.width(), pictures);
    }
    edit.endEditBlock();
    document->setPageSize(QSizeF(page.width(), withoutPages));
    tablerows::layOut(document);
    std::vector<HeadedTable> headed;
    for (QTextTable *table : qAsConst(tables)) {
        if (!qobject_cast<QTextTable *>(table->parentFrame()))
            headed.emplace_back(table);
    }
    document->setPageSize(page);
    tablerows::layOut(document);
    for (HeadedTable &each : headed)
        each.divide(page.height());
    moveCutParagraphs(document, page.height());
}
