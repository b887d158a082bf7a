#pragma once

#include "orderbrowser/rules/fieldvalues.h"
#include "orderbrowser/rules/orderlisting.h"

#include <QByteArray>
#include <QStringList>
#include <QVector>

/// Orders as they are shown, as a table for spreadsheet programs. A plain value that threads may
/// share.
struct OrderSheet
{
    OrderListing listing;
    QVector<int> rows; ///< positions in the listing, in the order in which they are shown
    QStringList keys;  ///< of the fields; those that the listing does not have are left out
    fieldvalues::Display display;

    QByteArray head() const;
    /// So many rows from \a first on; fewer at the end.
    QByteArray lines(int first, int count) const;

private:
    QVector<int> fields() const;
};
