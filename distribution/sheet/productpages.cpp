#include "distribution/sheet/productpages.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

#include <algorithm>
#include <cmath>

namespace {

/// Borders, margins and paddings at a page's ends, rather too many: a page that is thought full
/// too early ends a little early, one that is thought to have room left over stays all but empty.
constexpr double slack = 12;

} // namespace

ProductPages::ProductPages(QTextTable *table)
    : table_(table)
    , headerHeight_(tablerows::extent(table, tablerows::headers(table)).top -
                    tablerows::extent(table, 0).top)
{
    for (int row = tablerows::headers(table); row < table->rows();)
        row = addPiece(row);
}

/// Returns the row behind it.
int ProductPages::addPiece(int row)
{
    const double top = tablerows::extent(table_, row).top;
    for (int last = row; last < table_->rows(); ++last) {
        QTextTable *photos = tablerows::nested(table_, last);
        if (!photos)
            continue;
        Piece piece{row, last, photos, {top, tablerows::extent(photos, 0).bottom}, {}};
        for (int more = 1; more < photos->rows(); ++more)
            piece.moreRows.append(tablerows::extent(photos, more));
        pieces_.append(piece);
        return last + 1;
    }
    const bool isHeading = table_->cellAt(row, 0).columnSpan() == table_->columns();
    const int last = isHeading ? std::min(row + 1, table_->rows() - 1) : row;
    pieces_.append({row, last, nullptr, {top, tablerows::extent(table_, last).bottom}, {}});
    return last + 1;
}

tablerows::Extent ProductPages::extentOf(const Piece &piece) const
{
    return {tablerows::extent(table_, piece.row).top,
            piece.photos ? tablerows::extent(piece.photos, 0).bottom
                         : tablerows::extent(table_, piece.last).bottom};
}

tablerows::Extent ProductPages::start() const
{
    return {tablerows::extent(table_, 0).top, extentOf(pieces_.constFirst()).bottom};
}

void ProductPages::divide(double pageHeight)
{
    for (int piece = 1; (piece = firstDivided(piece, pageHeight)) < pieces_.size(); ++piece) {
        if (mayBreakBefore(piece, pageHeight))
            breakBefore(piece, pageHeight);
    }
}

int ProductPages::firstDivided(int from, double pageHeight) const
{
    const auto page = [pageHeight](double place) { return std::floor(place / pageHeight); };
    for (int piece = from; piece < pieces_.size(); ++piece) {
        const tablerows::Extent extent = extentOf(pieces_.at(piece));
        if (page(extent.top) != page(extent.bottom - 1))
            return piece;
    }
    return pieces_.size();
}

bool ProductPages::mayBreakBefore(int piece, double pageHeight) const
{
    const tablerows::Extent &extent = pieces_.at(piece).extent;
    return pieces_.at(piece - 1).photos &&
           extent.bottom - extent.top + headerHeight_ < pageHeight - 2 * slack;
}

/// Laying the document out takes far longer than all else here. So where the pages behind this one
/// will end is worked out at once; what comes out otherwise is seen, and broken, when they are laid
/// out.
void ProductPages::breakBefore(int piece, double pageHeight)
{
    double pageStart = std::floor(extentOf(pieces_.at(piece)).top / pageHeight) * pageHeight;
    double shift = 0; ///< from where it is without pages
    const auto fits = [&](const tablerows::Extent &extent) {
        return extent.bottom + shift < pageStart + pageHeight - slack;
    };
    const auto turnPage = [&](const tablerows::Extent &extent) {
        pageStart += pageHeight;
        shift = pageStart + headerHeight_ + slack - extent.top;
    };
    QTextCursor edit(table_->document());
    edit.beginEditBlock();
    for (int next = piece; next < pieces_.size(); ++next) {
        const Piece &each = pieces_.at(next);
        const bool isBroken =
            next == piece || (!fits(each.extent) && mayBreakBefore(next, pageHeight));
        setBreak(next, isBroken);
        if (isBroken || !fits(each.extent))
            turnPage(each.extent);
        for (const tablerows::Extent &row : each.moreRows) {
            if (!fits(row))
                turnPage(row);
        }
    }
    edit.endEditBlock();
    tablerows::layOut(table_->document());
}

/// In the paragraph that ends the photos above: those of the product's own row are in many cells.
void ProductPages::setBreak(int piece, bool isBroken)
{
    QTextCursor cursor = table_->cellAt(pieces_.at(piece - 1).last, 0).lastCursorPosition();
    QTextBlockFormat format = cursor.blockFormat();
    const auto policy =
        isBroken ? QTextFormat::PageBreak_AlwaysBefore : QTextFormat::PageBreak_Auto;
    if (format.pageBreakPolicy() == policy)
        return;
    format.setPageBreakPolicy(policy);
    cursor.setBlockFormat(format);
}
