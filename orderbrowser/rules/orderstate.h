#pragma once

#include <QRgb>
#include <QString>

/// How far an order's photos have come, in one word. Pure functions.
namespace orderstate {

struct Counts
{
    int originals = 0;
    bool isSelected = false; ///< the customers have finished choosing
    int chosen = 0;
    int retouched = 0;
};

QString text(const Counts &counts);
/// The colour for a text of text().
QRgb colour(const QString &text);
/// What texts of text() are sorted by: how far first, then how many.
double sortValue(const QString &text);

} // namespace orderstate
