#include "distribution/sheet/sheetpages.h"

#include "distribution/sheet/captionedpicture.h"

#include <QAbstractTextDocumentLayout>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

#include <algorithm>
#include <cmath>

namespace {

constexpr double whole = 100;       // percent
constexpr double captionMargin = 5; // between the captions of neighbours

/// A paragraph outside of tables, or a table.
struct Part
{
    QTextBlock block;
    QTextTable *table = nullptr;
};

struct Extent
{
    double top;
    double bottom;
};

class Paginator
{
public:
    Paginator(QTextDocument *document, const QSizeF &page)
        : document_(document)
        , page_(page)
        , layout_(document->documentLayout())
        , pictures_(new CaptionedPicture(document))
    {
    }

    void run()
    {
        QVector<QTextTable *> tables;
        collectTables(document_->rootFrame(), &tables);
        QTextCursor edit(document_);
        edit.beginEditBlock();
        for (QTextTable *table : qAsConst(tables))
            fillWidth(table);
        for (const QTextTable *table : qAsConst(tables))
            joinCaptions(table);
        edit.endEditBlock();
        document_->setPageSize(page_);
        keepHeadings();
        for (const QTextTable *table : qAsConst(tables)) {
            if (hasTitle(table))
                keepProducts(table);
        }
    }

private:
    static void collectTables(QTextFrame *frame, QVector<QTextTable *> *tables)
    {
        const QList<QTextFrame *> children = frame->childFrames();
        for (QTextFrame *child : children) {
            if (auto *table = qobject_cast<QTextTable *>(child))
                tables->append(table);
            collectTables(child, tables);
        }
    }

    /// Columns whose shares make up less than the whole leave a table narrower than it is meant.
    static void fillWidth(QTextTable *table)
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

    void joinCaptions(const QTextTable *table)
    {
        const double width = page_.width() / table->columns() - captionMargin;
        for (int row = 0; row < table->rows(); ++row) {
            for (int column = 0; column < table->columns(); ++column) {
                const QTextTableCell cell = table->cellAt(row, column);
                const QTextBlock first = cell.firstCursorPosition().block();
                if (first != cell.lastCursorPosition().block())
                    pictures_->join(first, first.next(), width);
            }
        }
    }

    void keepHeadings() const
    {
        QVector<Part> parts;
        for (auto each = document_->rootFrame()->begin(); !each.atEnd(); ++each)
            collectParts(each, &parts);
        for (int index = 0; index < parts.size(); ++index) {
            const bool isHeading =
                !parts.at(index).table && index + 1 < parts.size() && parts.at(index + 1).table;
            const QTextTable *table = parts.at(isHeading ? index + 1 : index).table;
            if (!table)
                continue;
            const double top = isHeading ? layout_->blockBoundingRect(parts.at(index).block).top()
                                         : rowExtent(table, 0).top;
            const double bottom = rowExtent(table, firstContentRow(table)).bottom;
            const double nextPage = (std::floor(top / page_.height()) + 1) * page_.height();
            if (bottom > nextPage && bottom - top < page_.height())
                moveDown(parts.at(index), nextPage + document_->documentMargin() - top);
            if (isHeading)
                ++index;
        }
    }

    /// Empty paragraphs are only what stands between tables.
    static void collectParts(const QTextFrame::iterator &each, QVector<Part> *parts)
    {
        QTextFrame *frame = each.currentFrame();
        if (auto *table = qobject_cast<QTextTable *>(frame)) {
            parts->append(Part{{}, table});
        } else if (frame) {
            for (auto inner = frame->begin(); !inner.atEnd(); ++inner)
                collectParts(inner, parts);
        } else if (!each.currentBlock().text().isEmpty()) {
            parts->append(Part{each.currentBlock(), nullptr});
        }
    }

    /// A product's rows and the first row of its photos. What stands above them makes room; padding
    /// of their own would be asked for on both pages.
    void keepProducts(const QTextTable *table) const
    {
        QTextTable *above = nullptr;
        for (int row = firstContentRow(table); row < table->rows(); ++row) {
            QTextTable *photos = nestedTable(table, row);
            if (!photos)
                continue;
            if (above) {
                const int first = rowOf(table, above) + 1;
                const double top = rowExtent(table, first).top;
                const double bottom = rowExtent(photos, 0).bottom;
                const double nextPage = (std::floor(top / page_.height()) + 1) * page_.height();
                if (bottom > nextPage && bottom - top < page_.height()) {
                    QTextTableFormat format = above->format();
                    format.setBottomMargin(format.bottomMargin() + nextPage +
                                           document_->documentMargin() - top);
                    above->setFormat(format);
                }
            }
            above = photos;
        }
    }

    static QTextTable *nestedTable(const QTextTable *table, int row)
    {
        const QTextTableCell cell = table->cellAt(row, 0);
        for (auto part = cell.begin(); !part.atEnd(); ++part) {
            if (auto *nested = qobject_cast<QTextTable *>(part.currentFrame()))
                return nested;
        }
        return nullptr;
    }

    static int rowOf(const QTextTable *table, const QTextTable *nested)
    {
        return table->cellAt(nested->firstPosition()).row();
    }

    static bool hasTitle(const QTextTable *table)
    {
        return table->columns() > 1 && table->cellAt(0, 0).columnSpan() == table->columns();
    }

    /// Below the title over all columns, and below the names of these.
    static int firstContentRow(const QTextTable *table)
    {
        return hasTitle(table) ? std::min(2, table->rows() - 1) : 0;
    }

    Extent rowExtent(const QTextTable *table, int row) const
    {
        Extent extent{layout_->frameBoundingRect(const_cast<QTextTable *>(table)).bottom(), 0};
        for (int column = 0; column < table->columns(); ++column) {
            const QTextTableCell cell = table->cellAt(row, column);
            if (cell.rowSpan() > 1)
                continue;
            for (auto part = cell.begin(); !part.atEnd(); ++part) {
                const QRectF rect = layout_->blockBoundingRect(part.currentBlock());
                extent.top = std::min(extent.top, rect.top());
                extent.bottom = std::max(extent.bottom, rect.bottom());
            }
        }
        return extent;
    }

    static void moveDown(const Part &part, double by)
    {
        if (part.table) {
            QTextTableFormat format = part.table->format();
            format.setTopMargin(format.topMargin() + by);
            part.table->setFormat(format);
            return;
        }
        QTextCursor cursor(part.block);
        QTextBlockFormat format = cursor.blockFormat();
        format.setTopMargin(format.topMargin() + by);
        cursor.setBlockFormat(format);
    }

    QTextDocument *document_;
    QSizeF page_;
    QAbstractTextDocumentLayout *layout_;
    CaptionedPicture *pictures_;
};

} // namespace

void paginate(QTextDocument *document, const QSizeF &page)
{
    Paginator(document, page).run();
}
