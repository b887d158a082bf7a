#pragma once

#include "distribution/sheet/tablerows.h"

#include <QVector>

class QTextTable;

/// Divides one of the sheet's product tables between pages: a product's rows stay with the first
/// row of its photos, and the heading of the products without photos with the first of these.
class ProductPages
{
public:
    /// While the document has no pages: what is where then says how much room each product needs.
    explicit ProductPages(QTextTable *table);

    /// From the table's top to the end of the first product's first photos, as they lie now.
    tablerows::Extent start() const;
    /// Once the document has pages of \a pageHeight, and nothing above the table moves any more.
    void divide(double pageHeight);

private:
    /// What no page's end may divide.
    struct Piece
    {
        int row;
        int last;
        QTextTable *photos;       ///< in the last row; nullptr where that is text
        tablerows::Extent extent; ///< without pages
        /// Those of the photos behind the first, which the layout moves without being asked.
        QVector<tablerows::Extent> moreRows;
    };

    int addPiece(int row);
    tablerows::Extent extentOf(const Piece &piece) const;
    int firstDivided(int from, double pageHeight) const;
    bool mayBreakBefore(int piece, double pageHeight) const;
    void breakBefore(int piece, double pageHeight);
    void setBreak(int piece, bool isBroken);

    QTextTable *table_;
    QVector<Piece> pieces_;
    double headerHeight_;
};
